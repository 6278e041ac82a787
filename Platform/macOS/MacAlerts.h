#pragma once

#include "Platform/Window.h"

namespace zephlin {

class MacAlerts final : public AlertPresenter {
 public:
  void runModal(const Alert& alert) override;
};

}  // namespace zephlin
