#import "Support/ApplicationTest.h"

#import "Support/Mac.h"
#include "Zephlin/StartApplication.h"

namespace zephlin::test {

void ApplicationTest::launch(const std::function<void()>& script) {
  mac::whenLaunched([&script] {
    mac::settle();
    script();
    [NSApp terminate:nil];
  });
  EXPECT_EQ(runApplication(platform()), 0);
  mac::settle();
  releasePlatform();
}

NSMenu* ApplicationTest::openMenu() {
  return openStatusMenu();
}

NSMenuItem* ApplicationTest::item(const std::string& title) {
  NSMenu* const menu = [mac::shownStatusItem() menu];
  const NSInteger index = [menu indexOfItemWithTitle:[NSString stringWithUTF8String:title.c_str()]];
  return static_cast<NSMenuItem*>([menu itemAtIndex:index]);
}

void ApplicationTest::choose(const std::string& title) {
  NSMenu* const menu = [mac::shownStatusItem() menu];
  [menu performActionForItemAtIndex:[menu indexOfItem:item(title)]];
  mac::settle();
}

std::string ApplicationTest::statusLine() {
  return [[[[mac::shownStatusItem() menu] itemAtIndex:1] title] UTF8String];
}

std::string ApplicationTest::symbolName() {
  return mac::symbolName([[mac::shownStatusItem() button] image]);
}

std::string ApplicationTest::toolTip() {
  return [[[mac::shownStatusItem() button] toolTip] UTF8String];
}

void ApplicationTest::openTapTest() {
  openMenu();
  choose("Tap Test…");
}

NSWindow* ApplicationTest::tapTestWindow() {
  return windowTitled("Tap Test");
}

Calls ApplicationTest::tapTestTexts() {
  return labelTexts([tapTestWindow() contentView]);
}

}  // namespace zephlin::test
