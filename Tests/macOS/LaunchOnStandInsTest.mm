#include "StandIns/Actions.h"
#include "StandIns/CallLog.h"
#include "StandIns/Knobs.h"
#import "Support/ApplicationTest.h"
#import "Support/StandInMac.h"
#include "Tests/Support/EnvironmentVariable.h"
#include "Tests/Support/FakeHidutil.h"

namespace zephlin::test {
namespace {

class LaunchOnStandInsTest : public ApplicationTest {};

TEST_F(LaunchOnStandInsTest, TheApplicationIsSetUpInOrderAndTakenDownInOrder) {
  launch([] {});
  EXPECT_EQ(
      standins::calls({"NSApplication set", "NSApplication terminate", "NSBundle", "NSRunLoop",
                       "NSStatus", "NSTimer", "NSWorkspace", "IONotificationPort", "IOService",
                       "SMAppService", "dispatch_queue"}),
      (Calls{"NSBundle bundleWithPath:/usr/local/bin/Contents/Frameworks/Sparkle.framework",
             "dispatch_queue_create_with_target(com.quorvenel.zephlin.engine, qos 0x11 0, "
             "frequency 0, target default)",
             "NSApplication setDelegate:delegate",
             "NSApplication setActivationPolicy:1",
             "NSApplication setMainMenu:menu",
             "NSStatusBar statusItemWithLength:-2",
             "NSStatusItem setMenu: delegate set, autoenables 0, 0 items",
             "IONotificationPortCreate(0)",
             "IONotificationPortSetDispatchQueue(main)",
             "IOServiceMatching(IOHIDDevice)",
             "IOServiceAddMatchingNotification(IOServiceFirstMatch)",
             "NSWorkspace addObserverForName:NSWorkspaceDidWakeNotification object:any queue:main",
             "NSRunLoop addTimer(interval 300, tolerance 30, main, common modes)",
             "NSApplication terminate:nil",
             "NSWorkspace removeObserver:",
             "NSTimer invalidate(interval 300)",
             "IONotificationPortDestroy",
             "NSStatusBar removeStatusItem",
             "NSApplication setMainMenu:nil",
             "NSApplication setDelegate:nil"}));
}

TEST_F(LaunchOnStandInsTest, TheStepsOfLaunchingComeInOrder) {
  standins::knobs().mainBundlePath = "/Applications/Zephlin.app";
  const EnvironmentVariable preview("ZEPHLIN_PREVIEW", "taptest");
  const EnvironmentVariable picture("ZEPHLIN_PREVIEW_OUT", "/nowhere/preview.png");
  launch([] {
    EXPECT_EQ(
        standins::calls({"IOHIDManagerOpen", "IOService", "NSRunLoop", "NSStatus",
                         "NSWindow makeKey", "NSWorkspace", "SMAppService reg", "dispatch_a"}),
        (Calls{"NSStatusBar statusItemWithLength:-2",
               "NSStatusItem setMenu: delegate set, autoenables 0, 0 items",
               "IOServiceMatching(IOHIDDevice)",
               "IOServiceAddMatchingNotification(IOServiceFirstMatch)",
               "NSWorkspace addObserverForName:NSWorkspaceDidWakeNotification object:any "
               "queue:main",
               "NSRunLoop addTimer(interval 300, tolerance 30, main, common modes)",
               "dispatch_async(serial)", "IOHIDManagerOpen(0)", "NSWindow makeKeyAndOrderFront:",
               "dispatch_after(1.000 s, main)", "SMAppService register"}));
  });
}

TEST_F(LaunchOnStandInsTest, NothingIsLeftWhenTheApplicationHasEnded) {
  standins::knobs().mainBundlePath = "/Applications/Zephlin.app";
  standins::knobs().bundleHasSparkle = true;
  launch([] {
    openMenu();
    choose("Tap Test…");
    wakeFromSleep();
    standins::attachDevice();
  });
  EXPECT_EQ(standins::liveObjects(), (std::map<std::string, int>{}));
  for (const char* kind : {"ZephlinActionTarget", "ZephlinApplicationDelegate", "ZephlinLayerView",
                           "ZephlinMenuDelegate", "ZephlinWindowDelegate", "NSStackView"}) {
    EXPECT_EQ(liveObjectsOf(kind), 0) << kind;
  }
}

TEST_F(LaunchOnStandInsTest, ALoginItemThatWasSetUpIsNotRegisteredAgainEvenIfANumberSaysSo) {
  standins::knobs().mainBundlePath = "/Applications/Zephlin.app";
  [[NSUserDefaults standardUserDefaults] setInteger:1 forKey:@"didSetupLoginItem"];
  launch([] {});
  EXPECT_EQ(standins::calls({"SMAppService register"}), Calls{});
}

TEST_F(LaunchOnStandInsTest, WhatFallsDueAfterTheEndFindsTheApplicationGone) {
  FakeHidutil::shared().setExitStatus(1);
  NSMenu* menu = nil;
  launch([&menu] {
    menu = [openMenu() retain];
    wakeFromSleep();
  });
  const std::size_t sets = FakeHidutil::shared().sets().size();
  standins::advance(60);
  [menu performActionForItemAtIndex:[menu indexOfItemWithTitle:@"Re-apply Now"]];
  standins::settle();
  [menu release];
  EXPECT_EQ(FakeHidutil::shared().sets().size(), sets);
}

}  // namespace
}  // namespace zephlin::test
