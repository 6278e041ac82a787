#include "StandIns/Actions.h"
#include "StandIns/CallLog.h"
#include "StandIns/Knobs.h"
#import "Support/MacTest.h"

namespace zephlin::test {
namespace {

class DevicesTest : public MacTest {
 protected:
  std::unique_ptr<Observation> observe(std::function<void()> callback) {
    return platform().hidDevices().observeDeviceAppeared(std::move(callback));
  }
  std::variant<std::unique_ptr<Observation>, std::int32_t> open(
      std::function<void(const KeyEvent&)> callback) {
    return platform().hidDevices().openCapsLockKey(std::move(callback));
  }
};

TEST_F(DevicesTest, ArmingBindsThePortToTheMainQueueAndReadsTheIteratorToItsEnd) {
  int calls = 0;
  const auto observation = observe([&] { ++calls; });
  EXPECT_EQ(standins::calls({"IO"}),
            (Calls{"IONotificationPortCreate(0)", "IONotificationPortSetDispatchQueue(main)",
                   "IOServiceMatching(IOHIDDevice)",
                   "IOServiceAddMatchingNotification(IOServiceFirstMatch)",
                   "IOIteratorNext -> device", "IOObjectRelease(device)",
                   "IOIteratorNext -> device", "IOObjectRelease(device)", "IOIteratorNext -> 0"}));
  standins::settle();
  EXPECT_EQ(calls, 0) << "devices that are there already do not count";
}

TEST_F(DevicesTest, EachDeviceThatAppearsIsReleasedAndTheNotificationArmedAnew) {
  int calls = 0;
  const auto observation = observe([&] { ++calls; });
  for (int i = 1; i <= 3; ++i) {
    standins::forgetCalls();
    standins::attachDevice();
    standins::settle();
    EXPECT_EQ(calls, i);
    EXPECT_EQ(standins::calls({"IO"}), (Calls{"IOIteratorNext -> device", "IOObjectRelease(device)",
                                              "IOIteratorNext -> 0"}));
  }
  EXPECT_FALSE(standins::liveObjects().contains("io_object"));
}

TEST_F(DevicesTest, TwoDevicesAtOnceAreOneCall) {
  int calls = 0;
  const auto observation = observe([&] { ++calls; });
  standins::attachDevice();
  standins::attachDevice();
  standins::settle();
  EXPECT_EQ(calls, 1);
}

TEST_F(DevicesTest, TheIteratorIsReleasedBeforeThePortIsDestroyedAndNoLateCallComes) {
  int calls = 0;
  auto observation = observe([&] { ++calls; });
  standins::attachDevice();
  standins::forgetCalls();
  observation.reset();
  EXPECT_EQ(standins::calls({"IO"}),
            (Calls{"IOObjectRelease(iterator)", "IONotificationPortDestroy"}));
  standins::settle();
  EXPECT_EQ(calls, 0);
}

TEST_F(DevicesTest, WithoutAPortNothingIsObserved) {
  standins::knobs().notificationPortsAvailable = false;
  EXPECT_EQ(observe([] {}), nullptr);
  EXPECT_EQ(standins::calls({"IO"}), Calls{"IONotificationPortCreate(0)"});
}

TEST_F(DevicesTest, WhereMatchingFailsThePortIsDestroyedAgain) {
  standins::knobs().matchingResult = 5;
  EXPECT_EQ(observe([] {}), nullptr);
  EXPECT_EQ(standins::calls({"IONotificationPortDestroy", "IOObjectRelease"}),
            Calls{"IONotificationPortDestroy"});
  EXPECT_FALSE(standins::liveObjects().contains("IONotificationPort"));
}

TEST_F(DevicesTest, TheManagerMatchesCapsLockOfKeyboardsAndIsScheduledBeforeItIsOpened) {
  const auto input = open([](const KeyEvent&) {});
  EXPECT_EQ(standins::calls({"IOHID"}),
            (Calls{"IOHIDManagerCreate(default, 0)",
                   "IOHIDManagerSetDeviceMatching(2 entries, DeviceUsagePage 1, DeviceUsage 6)",
                   "IOHIDManagerSetInputValueMatching(2 entries, UsagePage 7, Usage 57)",
                   "IOHIDManagerRegisterInputValueCallback",
                   "IOHIDManagerScheduleWithRunLoop(main, kCFRunLoopDefaultMode)",
                   "IOHIDManagerOpen(0)"}));
}

TEST_F(DevicesTest, TheManagerDeliversPressesAndReleasesAndNoOtherKey) {
  std::vector<bool> values;
  const auto input = open([&](const KeyEvent& event) { values.push_back(event.isDown); });
  standins::reportKey(7, 57, 1);
  standins::reportKey(7, 4, 1);
  standins::reportKey(7, 57, 2);
  standins::reportKey(7, 57, -1);
  standins::reportKey(7, 57, 0);
  EXPECT_EQ(values, (std::vector<bool>{true, true, true, false})) << "only 0 is a release";
}

TEST_F(DevicesTest, TheManagerIsUnscheduledThenClosedThenReleased) {
  std::vector<bool> values;
  auto input = open([&](const KeyEvent& event) { values.push_back(event.isDown); });
  standins::forgetCalls();
  input = std::int32_t{0};
  EXPECT_EQ(standins::calls({"IOHID"}),
            (Calls{"IOHIDManagerUnscheduleFromRunLoop(main, kCFRunLoopDefaultMode)",
                   "IOHIDManagerClose(0)", "IOHIDManager released"}));
  standins::reportKey(7, 57, 1);
  EXPECT_TRUE(values.empty());
}

TEST_F(DevicesTest, WhereOpeningFailsTheCodeIsReturnedAndTheManagerUnscheduledAndReleased) {
  standins::knobs().hidOpenResult = static_cast<std::int32_t>(0xe00002e2);
  const auto input = open([](const KeyEvent&) {});
  EXPECT_EQ(std::get<std::int32_t>(input), static_cast<std::int32_t>(0xe00002e2));
  const Calls calls = standins::calls({"IOHID"});
  EXPECT_EQ(Calls(calls.end() - 3, calls.end()),
            (Calls{"IOHIDManagerOpen(0)",
                   "IOHIDManagerUnscheduleFromRunLoop(main, kCFRunLoopDefaultMode)",
                   "IOHIDManager released"}));
}

}  // namespace
}  // namespace zephlin::test
