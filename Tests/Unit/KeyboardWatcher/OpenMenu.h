#pragma once

#include <memory>

#include "Platform/Simulated/SimulatedDesktop.h"

namespace zephlin {

/// A menu of the status bar that is open while this lives.
class OpenMenu {
 public:
  explicit OpenMenu(SimulatedDesktop& desktop)
      : desktop_(desktop), item_(desktop.systemStatusBar().makeStatusItem()) {
    item_->setMenu(std::make_shared<Menu>());
    isOpen_ = desktop_.openMenu();
  }
  OpenMenu(const OpenMenu&) = delete;
  OpenMenu& operator=(const OpenMenu&) = delete;
  ~OpenMenu() { desktop_.closeMenu(); }

  [[nodiscard]] bool isOpen() const { return isOpen_; }

 private:
  SimulatedDesktop& desktop_;
  std::unique_ptr<StatusItem> item_;
  bool isOpen_ = false;
};

}  // namespace zephlin
