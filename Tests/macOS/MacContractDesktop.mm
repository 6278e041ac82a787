#import <AppKit/AppKit.h>

#include <chrono>
#include <thread>

#import "ShownViews.h"
#import "Support/Mac.h"
#import "Support/MacTest.h"
#import "Support/WakeEventLoop.h"
#include "Tests/Contract/ContractDesktop.h"

namespace zephlin::contract {
namespace {

namespace mac = test::mac;
using test::clickButton;
using test::labelTexts;
using test::windowTitled;

std::string keyEquivalentOf(NSMenuItem* item) {
  NSString* const key = [[item keyEquivalent] uppercaseString];
  if ([key length] == 0) {
    return "";
  }
  const ModifierFlags held = [item keyEquivalentModifierMask];
  return std::string((held & modifierCommand) != 0 ? "Command-" : "") +
         ((held & modifierShift) != 0 ? "Shift-" : "") + [key UTF8String];
}

class MacContractDesktop final : public ContractDesktop {
 public:
  MacContractDesktop() {
    mac::reset();
    forgetSettings();
    restartPlatform();
  }

  Platform& platform() override { return *platform_; }
  void restartPlatform() override {
    platform_.reset();
    int argumentCount = 0;
    platform_ = makePlatform(argumentCount, nullptr);
  }

  bool runUntil(const std::function<bool()>& condition) override {
    for (const double end = monotonicSeconds() + timeout; !condition(); takeTurn()) {
      if (monotonicSeconds() > end) {
        return false;
      }
    }
    return true;
  }
  void runFor(double seconds) override {
    for (const double end = monotonicSeconds() + seconds; monotonicSeconds() < end;) {
      takeTurn();
    }
  }
  double monotonicSeconds() override {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
  }
  void letTimePass(double seconds) override {
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
  }

  void plugKeyboard() override { mac::plugKeyboard(); }
  void sleepAndWake() override { test::wakeFromSleep(); }
  void pressCapsLock() override { mac::pressCapsLock(); }
  void releaseCapsLock() override { mac::releaseCapsLock(); }

  bool openMenu() override { return test::openStatusMenu() != nil; }
  std::vector<ShownMenuItem> menuItems() override;
  bool chooseMenuItem(const std::string& title) override;
  void closeMenu() override {}
  std::string statusToolTip() override {
    NSString* const text = [[mac::shownStatusItem() button] toolTip];
    return text == nil ? "" : [text UTF8String];
  }
  bool isStatusImageShown() override { return [[mac::shownStatusItem() button] image] != nil; }

  std::vector<ShownAlert> alerts() override;
  void dismissAlert() override {
    clickButton([[NSApp modalWindow] contentView], alerts().at(0).buttons.at(0));
    wakeAppKitsEventLoop();
  }
  bool isWindowShown() override { return [windowTitled(windowTitle) isVisible]; }
  std::vector<std::string> windowTexts() override { return labelTexts(content()); }
  bool pressButton(const std::string& title) override { return clickButton(content(), title); }
  void closeWindow() override { [windowTitled(windowTitle) performClose:nil]; }

  ShownWindow shownWindow(const std::string& title) override {
    NSWindow* const window = windowTitled(title);
    return [window isVisible] ? test::readBack(window) : ShownWindow();
  }
  void setDark(bool isDark) override { mac::setDark(isDark); }

  void storeTextInDefaults(const std::string& key, const std::string& text) override {
    [[NSUserDefaults standardUserDefaults] setObject:[NSString stringWithUTF8String:text.c_str()]
                                              forKey:[NSString stringWithUTF8String:key.c_str()]];
  }
  void spoilDefaults() override { forgetSettings(); }
  void switchLoginItemOff() override { mac::switchLoginItemOff(); }
  void makeLoginItemsFail() override { mac::makeLoginItemsFail(); }

 private:
  static constexpr double timeout = 30;

  static void forgetSettings() {
    [[NSUserDefaults standardUserDefaults]
        removePersistentDomainForName:[[NSProcessInfo processInfo] processName]];
  }
  static NSView* content() { return [windowTitled(windowTitle) contentView]; }
  static void takeTurn() {
    const AutoreleasePool pool;
    NSString* const mode =
        mac::modalAlert() == nil ? NSDefaultRunLoopMode : NSModalPanelRunLoopMode;
    [[NSRunLoop mainRunLoop] runMode:mode beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.005]];
  }

  std::unique_ptr<Platform> platform_;
};

std::vector<ShownMenuItem> MacContractDesktop::menuItems() {
  std::vector<ShownMenuItem> shown;
  for (NSMenuItem* item in [[mac::shownStatusItem() menu] itemArray]) {
    const bool isSeparator = [item isSeparatorItem];
    shown.push_back({isSeparator ? "" : [[item title] UTF8String], isSeparator,
                     isSeparator || [item isEnabled], [item state] == NSControlStateValueOn,
                     keyEquivalentOf(item)});
  }
  return shown;
}

bool MacContractDesktop::chooseMenuItem(const std::string& title) {
  NSMenu* const menu = [mac::shownStatusItem() menu];
  const NSInteger index = [menu indexOfItemWithTitle:[NSString stringWithUTF8String:title.c_str()]];
  if (index < 0 || ![[menu itemAtIndex:index] isEnabled]) {
    return false;
  }
  [menu performActionForItemAtIndex:index];
  return true;
}

std::vector<ShownAlert> MacContractDesktop::alerts() {
  NSAlert* const alert = mac::modalAlert();
  if (alert == nil) {
    return {};
  }
  ShownAlert shown{[[alert messageText] UTF8String], {}};
  for (NSButton* button in [alert buttons]) {
    shown.buttons.emplace_back([[button title] UTF8String]);
  }
  return {shown};
}

}  // namespace

std::unique_ptr<ContractDesktop> makeContractDesktop() {
  return std::make_unique<MacContractDesktop>();
}

}  // namespace zephlin::contract
