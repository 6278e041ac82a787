#pragma once

#import <AppKit/AppKit.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Platform/Platform.h"
#import "Platform/macOS/Retained.h"

namespace zephlin::test {

using Calls = std::vector<std::string>;

/// Calls `visit` for the view and all below it.
void forEachNativeView(NSView* view, const std::function<void(NSView*)>& visit);

/// Clicks the button below the view that has this title; false if there is none.
bool clickButton(NSView* view, const std::string& title);
/// The texts of the labels below the view.
Calls labelTexts(NSView* view);
/// The application's window with this title, or nil.
NSWindow* windowTitled(const std::string& title);

/// Opens the status item's menu as AppKit does, asking the delegate for its items; nil without one.
NSMenu* openStatusMenu();
/// Tells everyone that the machine has woken from sleep.
void wakeFromSleep();

/// A new Mac without stored settings. Time stands still where possible (Support/Mac.h).
class MacTest : public ::testing::Test {
 protected:
  MacTest();
  ~MacTest() override;

  Platform& platform() { return *platform_; }
  void releasePlatform() { platform_.reset(); }

  /// Lets the main run loop take turns until the condition holds.
  static void waitUntil(const std::function<bool()>& condition);
  /// Clicks the button of the modal window that has this title.
  static void clickInModalWindow(const std::string& title);

 private:
  AutoreleasePool pool_;
  std::unique_ptr<Platform> platform_;
};

}  // namespace zephlin::test
