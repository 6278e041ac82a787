#pragma once

#include <memory>

#include "Platform/Window.h"

namespace zephlin {

class MacWindows final : public WindowServer {
 public:
  std::unique_ptr<Window> makeWindow(const WindowDescription& description,
                                     std::shared_ptr<View> contentView) override;
};

class MacAlerts final : public AlertPresenter {
 public:
  void runModal(const Alert& alert) override;
};

}  // namespace zephlin
