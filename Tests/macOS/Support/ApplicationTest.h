#pragma once

#include <functional>
#include <string>

#import "Support/MacTest.h"

namespace zephlin::test {

/// The whole application on a Mac, from its launch to its end.
class ApplicationTest : public MacTest {
 protected:
  /// Launches the application, does the script on its event loop, and returns when it has
  /// terminated, which it is asked to at the script's end.
  void launch(const std::function<void()>& script);

  /// The menu as the user opens it.
  static NSMenu* openMenu();
  /// Chooses the entry with this title from the menu as it is.
  static void choose(const std::string& title);
  static NSMenuItem* item(const std::string& title);
  static std::string statusLine();
  static std::string symbolName();
  static std::string toolTip();
  /// Chooses the tap test from the menu.
  static void openTapTest();
  /// The tap test's window, or nil.
  static NSWindow* tapTestWindow();
  /// The texts of its labels.
  static Calls tapTestTexts();
};

}  // namespace zephlin::test
