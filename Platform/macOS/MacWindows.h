#pragma once

#include <memory>

#include "Platform/Window.h"

namespace zephlin {

class MacWindows final : public WindowServer {
 public:
  std::unique_ptr<Window> makeWindow(const WindowDescription& description,
                                     std::shared_ptr<View> contentView) override;
};

}  // namespace zephlin
