#import "Support/ApplicationTest.h"
#include "Tests/Support/FakeHidutil.h"

namespace zephlin::test {
namespace {

class LaunchTest : public ApplicationTest {};

TEST_F(LaunchTest, TheOverrideIsAppliedOffTheMainThreadAndStaysWhenTheApplicationEnds) {
  launch([] { EXPECT_EQ(symbolName(), "capslock.fill"); });
  EXPECT_EQ(FakeHidutil::shared().sets(), Calls{"0"});
  EXPECT_TRUE(FakeHidutil::shared().neverOnMainThread());
  EXPECT_TRUE([[NSUserDefaults standardUserDefaults] boolForKey:@"lastApplyOK"]);
}

TEST_F(LaunchTest, SwitchedOffTheStatusIsOnlyRead) {
  [[NSUserDefaults standardUserDefaults] setBool:NO forKey:@"instantCapsLockEnabled"];
  launch([] {
    EXPECT_EQ(symbolName(), "capslock");
    EXPECT_EQ(toolTip(), "Zephlin: disabled (Apple default delay)");
  });
  EXPECT_EQ(FakeHidutil::shared().sets(), Calls{});
}

TEST_F(LaunchTest, ABareExecutableIsNoLoginItem) {
  launch([] {});
  EXPECT_TRUE([[NSUserDefaults standardUserDefaults] objectForKey:@"didSetupLoginItem"] == nil);
}

TEST_F(LaunchTest, TheApplicationsDelegateIsToldOfTheLaunchAndOfNothingElse) {
  launch([] {
    const id delegate = [NSApp delegate];
    EXPECT_TRUE([delegate respondsToSelector:@selector(applicationDidFinishLaunching:)]);
    for (NSString *callback in
         [NSArray arrayWithObjects:@"applicationShouldHandleReopen:hasVisibleWindows:",
                                   @"applicationShouldTerminate:", @"applicationWillTerminate:",
                                   @"applicationShouldTerminateAfterLastWindowClosed:", nil]) {
      EXPECT_FALSE([delegate respondsToSelector:NSSelectorFromString(callback)])
          << [callback UTF8String];
    }
  });
}

TEST_F(LaunchTest, AFailureShowsTheWarning) {
  FakeHidutil::shared().setExitStatus(1);
  launch([] {
    EXPECT_EQ(symbolName(), "exclamationmark.triangle");
    EXPECT_EQ(
        toolTip(),
        "Zephlin: enabled, but the fix could not be applied. Check Input Monitoring permission.");
  });
}

}  // namespace
}  // namespace zephlin::test
