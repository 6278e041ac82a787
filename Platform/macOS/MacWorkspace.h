#pragma once

#include <functional>
#include <memory>

#include "Platform/Workspace.h"

namespace zephlin {

class MacWorkspace final : public Workspace {
 public:
  std::unique_ptr<Observation> observeDidWake(std::function<void()> callback) override;
};

}  // namespace zephlin
