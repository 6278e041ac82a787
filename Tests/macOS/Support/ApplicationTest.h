#pragma once

#include <functional>
#include <string>

#import "Support/Mac.h"
#import "Support/MacTest.h"
#include "Zephlin/StartApplication.h"

namespace zephlin::test {

/// The whole application on a Mac, from its launch to its end.
class ApplicationTest : public MacTest {
 protected:
  /// Launches the application, does the script on its event loop, and returns when it has
  /// terminated, which it is asked to at the script's end.
  void launch(const std::function<void()>& script) {
    mac::whenLaunched([&script] {
      mac::settle();
      script();
      [NSApp terminate:nil];
    });
    EXPECT_EQ(runApplication(platform()), 0);
    mac::settle();
    releasePlatform();
  }

  /// The menu as the user opens it.
  static NSMenu* openMenu() { return openStatusMenu(); }

  /// Chooses the entry with this title from the menu as it is.
  static void choose(const std::string& title) {
    NSMenu* const menu = [mac::shownStatusItem() menu];
    [menu performActionForItemAtIndex:[menu indexOfItem:item(title)]];
    mac::settle();
  }

  static NSMenuItem* item(const std::string& title) {
    NSMenu* const menu = [mac::shownStatusItem() menu];
    const NSInteger index =
        [menu indexOfItemWithTitle:[NSString stringWithUTF8String:title.c_str()]];
    return static_cast<NSMenuItem*>([menu itemAtIndex:index]);
  }

  static std::string statusLine() {
    return [[[[mac::shownStatusItem() menu] itemAtIndex:1] title] UTF8String];
  }

  static std::string symbolName() {
    return mac::symbolName([[mac::shownStatusItem() button] image]);
  }

  static std::string toolTip() { return [[[mac::shownStatusItem() button] toolTip] UTF8String]; }

  /// Chooses the tap test from the menu.
  static void openTapTest() {
    openMenu();
    choose("Tap Test…");
  }

  /// The tap test's window, or nil.
  static NSWindow* tapTestWindow() { return windowTitled("Tap Test"); }

  /// The texts of its labels.
  static Calls tapTestTexts() { return labelTexts([tapTestWindow() contentView]); }
};

}  // namespace zephlin::test
