#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "Tests/Desktop/Harness/Accessibility.h"
#include "Tests/Desktop/Harness/Bundle.h"
#include "Tests/Desktop/Harness/DesktopTest.h"
#include "Tests/Desktop/Harness/PanelMenu.h"

namespace zephlin::test {

constexpr const char* onLine = "On. Every tap registers instantly";
constexpr const char* offLine = "Off, using your Mac's normal delay";

/// Tests of what a person does with a pointer and keys, on every desktop. D-Bus and lists of
/// windows only say what came of it.
class EverydayTest : public DesktopTest {
 protected:
  /// Under the desktop's name.
  static void photograph(const std::string& what) {
    desktop().photograph(desktop().shell().name() + "-" + what);
  }

  /// The application's.
  [[nodiscard]] std::vector<ShownWindow> windows() const {
    std::vector<ShownWindow> windows = desktop().shell().windows();
    std::erase_if(windows, [this](const ShownWindow& window) {
      return window.process != app_.program().id();
    });
    return windows;
  }

  /// With the key for it.
  void closeWindow() {
    desktop().fingers().tap(Key::Escape);
    waitUntil("the window to go", [this] { return windows().empty(); });
  }

  /// Starting at login is for an application in a bundle.
  const Bundle bundle_;
  App app_{desktop(), {.command = {bundle_.program()}, .environment = accessible()}};
  PanelMenu menu_{desktop(), app_};
};

}  // namespace zephlin::test
