#include <string>
#include <vector>

#import "Support/ApplicationTest.h"
#import "Support/Mac.h"
#include "Tests/Support/FakeHidutil.h"

/// A view that takes the keyboard and notes what it is asked to do.
@interface ZephlinTestResponder : NSView {
 @public
  std::vector<std::string> _actions;
}
@end

@implementation ZephlinTestResponder

- (BOOL)acceptsFirstResponder {
  return YES;
}

- (void)undo:(id)sender {
  (void)sender;
  _actions.emplace_back("undo");
}

- (void)redo:(id)sender {
  (void)sender;
  _actions.emplace_back("redo");
}

@end

namespace zephlin::test {
namespace {

class MenuActionsTest : public ApplicationTest {
 protected:
  static Calls titles(NSMenu* menu) {
    Calls found;
    for (NSMenuItem* entry in [menu itemArray]) {
      found.emplace_back([entry isSeparatorItem] ? "-" : [[entry title] UTF8String]);
    }
    return found;
  }

  static NSMenu* submenu(NSInteger index) { return [[[NSApp mainMenu] itemAtIndex:index] submenu]; }

  static void pressKey(NSWindow* window, NSString* characters, ModifierFlags flags) {
    [[NSApp mainMenu]
        performKeyEquivalent:[NSEvent keyEventWithType:NSEventTypeKeyDown
                                                    location:NSZeroPoint
                                               modifierFlags:static_cast<NSEventModifierFlags>(
                                                                 flags)
                                                   timestamp:0
                                                windowNumber:[window windowNumber]
                                                     context:nil
                                                  characters:characters
                                 charactersIgnoringModifiers:characters
                                                   isARepeat:NO
                                                     keyCode:6]];
  }

  static std::string selectorOf(NSMenu* menu, NSInteger index) {
    return [NSStringFromSelector([[menu itemAtIndex:index] action]) UTF8String];
  }
};

TEST_F(MenuActionsTest, TogglingRestoresAndAppliesAndRewritesTheOpenMenusStatusLine) {
  launch([] {
    openMenu();
    choose("Instant Caps Lock");
    EXPECT_EQ(statusLine(), "Off, using your Mac's normal delay");
    EXPECT_EQ(symbolName(), "capslock");
    openMenu();
    EXPECT_EQ([item("Instant Caps Lock") state], NSControlStateValueOff);
    EXPECT_FALSE([item("Re-apply Now") isEnabled]);
    choose("Instant Caps Lock");
    EXPECT_EQ(statusLine(), "On. Every tap registers instantly");
  });
  EXPECT_EQ(FakeHidutil::shared().sets(), (Calls{"0", "-1", "0"}));
}

TEST_F(MenuActionsTest, ReapplyNowAppliesAnew) {
  launch([] {
    openMenu();
    choose("Re-apply Now");
  });
  EXPECT_EQ(FakeHidutil::shared().sets(), Calls(2, "0"));
}

TEST_F(MenuActionsTest, QuitRestoresNothing) {
  launch([] {
    openMenu();
    choose("Quit Zephlin");
  });
  EXPECT_EQ(FakeHidutil::shared().sets(), Calls{"0"});
}

TEST_F(MenuActionsTest, TheMainMenuSendsItsActionsAlongTheResponderChain) {
  launch([] {
    ASSERT_EQ([[NSApp mainMenu] numberOfItems], 2);
    EXPECT_EQ(titles(submenu(0)), (Calls{"Hide Zephlin", "-", "Quit Zephlin"}));
    EXPECT_EQ(titles(submenu(1)),
              (Calls{"Undo", "Redo", "-", "Cut", "Copy", "Paste", "Select All"}));
    EXPECT_TRUE([[submenu(1) title] isEqual:@"Edit"]);
    EXPECT_EQ(selectorOf(submenu(0), 0), "hide:");
    EXPECT_EQ(selectorOf(submenu(0), 2), "terminate:");
    const char* const edits[] = {
        "undo:", "redo:", nullptr, "cut:", "copy:", "paste:", "selectAll:"};
    const char* const keys[] = {"z", "z", "", "x", "c", "v", "a"};
    for (NSInteger i = 0; i < 7; ++i) {
      NSMenuItem* const entry = [submenu(1) itemAtIndex:i];
      EXPECT_TRUE([entry target] == nil);
      if (edits[i] != nullptr) {
        EXPECT_EQ(selectorOf(submenu(1), i), edits[i]);
        EXPECT_EQ(std::string([[entry keyEquivalent] UTF8String]), keys[i]);
        EXPECT_EQ([entry keyEquivalentModifierMask], i == 1 ? 0x120000U : 0x100000U) << edits[i];
      }
    }
  });
}

TEST_F(MenuActionsTest, CommandZReachesTheFirstResponderOfTheKeyWindow) {
  launch([] {
    openTapTest();
    NSWindow* const window = tapTestWindow();
    ZephlinTestResponder* const responder =
        [[[ZephlinTestResponder alloc] initWithFrame:NSZeroRect] autorelease];
    [[window contentView] addSubview:responder];
    ASSERT_TRUE([window makeFirstResponder:responder]);
    pressKey(window, @"z", modifierCommand);
    EXPECT_EQ(responder->_actions, Calls{"undo"});
    // GNUstep does not look at Shift, so Redo is chosen.
    [submenu(1) performActionForItemAtIndex:1];
    EXPECT_EQ(responder->_actions, (Calls{"undo", "redo"}));
  });
}

}  // namespace
}  // namespace zephlin::test
