#pragma once

#include "Platform/Services.h"
#include "Platform/Window.h"

namespace zephlin {

/// Shows the version. Newer ones come from the package manager, so nothing looks for them here.
class LinuxUpdater final : public Updater {
 public:
  /// The presenter outlives the updater.
  explicit LinuxUpdater(AlertPresenter& alerts) : alerts_(alerts) {}

  /// Returns when the alert is closed.
  void checkForUpdates() override {
    alerts_.runModal({.messageText = "Zephlin " ZEPHLIN_VERSION,
                      .informativeText = "Your package manager installs newer versions.",
                      .buttons = {"OK"}});
  }

 private:
  AlertPresenter& alerts_;
};

}  // namespace zephlin
