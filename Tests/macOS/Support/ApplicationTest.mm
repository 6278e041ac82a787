#import "Support/ApplicationTest.h"

#include "StandIns/Actions.h"
#import "StandIns/AppKit/StatusMenu.h"
#import "StandIns/AppKit/SymbolImage.h"
#import "StandIns/RunLoop.h"
#include "Zephlin/RunApplication.h"

namespace zephlin::test {

void ApplicationTest::launch(const std::function<void()>& script) {
  standins::whenLaunched([&script] {
    standins::settle();
    script();
    [NSApp terminate:nil];
  });
  EXPECT_EQ(runApplication(platform()), 0);
  standins::settle();
  releasePlatform();
}

NSMenu* ApplicationTest::openMenu() {
  return standins::openStatusMenu();
}

NSMenuItem* ApplicationTest::item(const std::string& title) {
  NSMenu* const menu = [standins::shownStatusItem() menu];
  const NSInteger index = [menu indexOfItemWithTitle:[NSString stringWithUTF8String:title.c_str()]];
  return static_cast<NSMenuItem*>([menu itemAtIndex:index]);
}

void ApplicationTest::choose(const std::string& title) {
  NSMenu* const menu = [standins::shownStatusItem() menu];
  [menu performActionForItemAtIndex:[menu indexOfItem:item(title)]];
  standins::settle();
}

std::string ApplicationTest::statusLine() {
  return [[[[standins::shownStatusItem() menu] itemAtIndex:1] title] UTF8String];
}

std::string ApplicationTest::symbolName() {
  const auto* const image =
      static_cast<StandInSymbolImage*>([[standins::shownStatusItem() button] image]);
  return image == nil ? std::string() : [image->_symbolName UTF8String];
}

std::string ApplicationTest::toolTip() {
  return [[[standins::shownStatusItem() button] toolTip] UTF8String];
}

NSWindow* ApplicationTest::tapTestWindow() {
  return windowTitled("Tap Test");
}

Calls ApplicationTest::tapTestTexts() {
  return labelTexts([tapTestWindow() contentView]);
}

}  // namespace zephlin::test
