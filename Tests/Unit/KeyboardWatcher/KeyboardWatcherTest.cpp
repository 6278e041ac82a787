#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "Platform/Simulated/SimulatedDesktop.h"
#include "Tests/Support/DelegatingPlatform.h"
#include "Tests/Unit/KeyboardWatcher/OpenMenu.h"
#include "Zephlin/AppDelegate.h"
#include "Zephlin/KeyboardWatcher.h"

namespace zephlin {
namespace {

/// Times in seconds of the desktop's monotonic time.
using Times = std::vector<double>;

/// A watcher that starts at time 0, and when it called.
class KeyboardWatcherTest : public testing::Test {
 protected:
  static constexpr double beforeTheFirstReconcile = 299.9;

  void construct() {
    watcher_ = std::make_shared<KeyboardWatcher>(desktop_, [this] {
      calls_.push_back(desktop_.now());
      if (isToDestroyTheWatcher_) {
        watcher_.reset();
      }
    });
  }
  void start() {
    construct();
    watcher_->start();
  }

  void plugAt(double time) {
    desktop_.after(time, [this] { desktop_.plugKeyboard(); });
  }
  void wakeAt(double time) {
    desktop_.after(time, [this] { desktop_.sleepAndWake(3600); });
  }
  void destroyAt(double time) {
    desktop_.after(time, [this] { watcher_.reset(); });
  }
  Times callsUntil(double time) {
    desktop_.runUntil(time);
    return calls_;
  }
  void expectNoSources() {
    EXPECT_EQ(desktop_.hidDevices().appearedObservers(), 0U);
    EXPECT_EQ(desktop_.workspace().wakeObservers(), 0U);
    EXPECT_EQ(desktop_.dispatch().liveTimers().size(), 0U);
  }

  SimulatedDesktop desktop_;
  std::shared_ptr<KeyboardWatcher> watcher_;
  Times calls_;
  bool isToDestroyTheWatcher_ = false;
};

TEST_F(KeyboardWatcherTest, ConstructionStartsNothing) {
  construct();
  expectNoSources();
  plugAt(1);
  wakeAt(5);
  EXPECT_EQ(callsUntil(1000), Times{});
}

TEST_F(KeyboardWatcherTest, StartOpensEachSourceOnce) {
  start();
  EXPECT_EQ(desktop_.hidDevices().appearedObservers(), 1U);
  EXPECT_EQ(desktop_.workspace().wakeObservers(), 1U);
  ASSERT_EQ(desktop_.dispatch().liveTimers().size(), 1U);
  EXPECT_EQ(desktop_.dispatch().liveTimers()[0].interval, Seconds(300));
  EXPECT_EQ(desktop_.dispatch().liveTimers()[0].tolerance, Seconds(30));
}

TEST_F(KeyboardWatcherTest, DevicesAlreadyPresentCauseNoCall) {
  desktop_.plugKeyboard();
  desktop_.runUntilIdleNow();
  start();
  EXPECT_EQ(callsUntil(beforeTheFirstReconcile), Times{});
}

TEST_F(KeyboardWatcherTest, ADevicePluggedInJustBeforeTheStartCausesNoCall) {
  desktop_.plugKeyboard();
  start();
  EXPECT_EQ(callsUntil(beforeTheFirstReconcile), Times{});
}

TEST_F(KeyboardWatcherTest, ADeviceThatIsNoKeyboardCountsToo) {
  start();
  desktop_.attachDevice(false);
  EXPECT_EQ(callsUntil(beforeTheFirstReconcile), Times{1});
}

TEST_F(KeyboardWatcherTest, UnpluggingYieldsNoCall) {
  const auto keyboard = desktop_.plugKeyboard();
  desktop_.runUntilIdleNow();
  start();
  ASSERT_TRUE(desktop_.unplugKeyboard(keyboard));
  EXPECT_EQ(callsUntil(beforeTheFirstReconcile), Times{});
}

struct History {
  const char* name;
  Times plugs;
  Times wakes;
  /// To the tick.
  Times calls;
  double end = 299.9;
};

void PrintTo(const History& history, std::ostream* out) {
  *out << history.name;
}

class KeyboardWatcherHistoryTest : public KeyboardWatcherTest,
                                   public testing::WithParamInterface<History> {};

TEST_P(KeyboardWatcherHistoryTest, YieldsTheseCalls) {
  start();
  for (const double time : GetParam().plugs) {
    plugAt(time);
  }
  for (const double time : GetParam().wakes) {
    wakeAt(time);
  }
  EXPECT_EQ(callsUntil(GetParam().end), GetParam().calls);
}

INSTANTIATE_TEST_SUITE_P(
    , KeyboardWatcherHistoryTest,
    testing::Values(
        History{"ADeviceIsOneCallASecondLater", {5}, {}, {6}},
        History{"ThreeDevicesHalfASecondApartAreOneCall", {1, 1.5, 2}, {}, {3}},
        History{"DevicesMoreThanASecondApartAreACallEach", {1, 2.5}, {}, {2, 3.5}},
        History{"AWakeIsACallTwoSecondsLaterAndOneTenSecondsLater", {}, {1}, {3, 11}},
        History{"TwoWakesASecondApartAreOneDebouncedCallAndTwoFollowUps", {}, {1, 2}, {4, 11, 12}},
        History{"ADeviceAfterAWakeShortensTheWait", {1.5}, {1}, {2.5, 11}},
        History{"AWakeAfterADevicePutsTheCallOff", {1}, {1.5}, {3.5, 11.5}},
        History{"AFollowUpLeavesADebouncedCallPending", {10.5}, {1}, {3, 11, 11.5}},
        History{"TheReconcileTimerCallsEveryFiveMinutes", {}, {}, {300, 600, 900}, 1199},
        History{"AReconcileCallLeavesADebouncedCallPending", {299.5}, {}, {300, 300.5}, 599},
        History{"ManyEventsAreExactlyTheseCalls",
                {11, 11.25, 100, 298},
                {10, 295},
                {12.25, 20, 101, 297, 299, 300, 305, 600},
                610}),
    [](const auto& history) { return std::string(history.param.name); });

TEST_F(KeyboardWatcherTest, SettingTheWallClockMovesNoCall) {
  start();
  wakeAt(1);
  plugAt(20);
  for (const double time : {1.5, 5.0, 20.5}) {
    desktop_.after(time, [this] { desktop_.clock().jump(-1e6); });
  }
  EXPECT_EQ(callsUntil(310), (Times{3, 11, 21, 300}));
}

TEST_F(KeyboardWatcherTest, ALateReconcileCallComesAtMostThirtySecondsLate) {
  desktop_.dispatch().lateness().setTimerShareOfTolerance(1);
  start();
  EXPECT_EQ(callsUntil(1000), (Times{330, 630, 930}));
}

TEST_F(KeyboardWatcherTest, AllCallsComeWhileAMenuIsOpen) {
  start();
  const OpenMenu menu(desktop_);
  ASSERT_TRUE(menu.isOpen());
  plugAt(1);
  wakeAt(20);
  EXPECT_EQ(callsUntil(301), (Times{2, 22, 30, 300}));
}

TEST_F(KeyboardWatcherTest, WithoutDeviceObservationTheOtherSourcesStillCall) {
  desktop_.hidDevices().setObservable(false);
  start();
  plugAt(1);
  wakeAt(20);
  EXPECT_EQ(callsUntil(310), (Times{22, 30, 300}));
  EXPECT_EQ(desktop_.log().entries().size(), 0U);
  watcher_->stop();
  expectNoSources();
}

TEST_F(KeyboardWatcherTest, StopEndsEverySourceAndTheDebouncedCall) {
  start();
  plugAt(1);
  desktop_.runUntil(1.5);
  watcher_->stop();
  expectNoSources();
  plugAt(10);
  wakeAt(20);
  EXPECT_EQ(callsUntil(1000), Times{});
}

TEST_F(KeyboardWatcherTest, StopDoesNotCancelTheFollowUpOfAWake) {
  start();
  wakeAt(1);
  desktop_.runUntil(1.5);
  watcher_->stop();
  EXPECT_EQ(callsUntil(1000), Times{11});
}

TEST_F(KeyboardWatcherTest, StoppingTwiceDoesNothingTheSecondTime) {
  start();
  plugAt(1);
  desktop_.runUntil(1.5);
  watcher_->stop();
  watcher_->stop();
  expectNoSources();
  EXPECT_EQ(callsUntil(1000), Times{});
}

TEST_F(KeyboardWatcherTest, StoppingBeforeStartingDoesNothing) {
  construct();
  watcher_->stop();
  expectNoSources();
  watcher_->start();
  EXPECT_EQ(callsUntil(310), Times{300});
}

TEST_F(KeyboardWatcherTest, DestructionCancelsTheDebouncedCall) {
  start();
  plugAt(1);
  destroyAt(1.999);
  EXPECT_EQ(callsUntil(1000), Times{});
  expectNoSources();
}

TEST_F(KeyboardWatcherTest, DestructionSilencesTheFollowUpOfAWake) {
  start();
  wakeAt(1);
  destroyAt(5);
  EXPECT_EQ(callsUntil(1000), Times{3});
}

TEST_F(KeyboardWatcherTest, EventsThatAreUnderWayDoNotReachADestroyedWatcher) {
  start();
  desktop_.plugKeyboard();
  desktop_.sleepAndWake(60);
  watcher_.reset();
  EXPECT_EQ(callsUntil(1000), Times{});
}

TEST_F(KeyboardWatcherTest, NothingThatIsPendingKeepsTheWatcher) {
  start();
  desktop_.sleepAndWake(60);
  desktop_.plugKeyboard();
  desktop_.runFor(0.5);
  const std::weak_ptr<KeyboardWatcher> watcher = watcher_;
  watcher_.reset();
  EXPECT_TRUE(watcher.expired());
}

TEST_F(KeyboardWatcherTest, ADebouncedCallMayDestroyTheWatcher) {
  isToDestroyTheWatcher_ = true;
  start();
  plugAt(1);
  wakeAt(3);
  EXPECT_EQ(callsUntil(1000), Times{2});
  expectNoSources();
}

TEST_F(KeyboardWatcherTest, AFollowUpMayDestroyTheWatcher) {
  start();
  wakeAt(1);
  plugAt(10.5);
  desktop_.after(5, [this] { isToDestroyTheWatcher_ = true; });
  EXPECT_EQ(callsUntil(1000), (Times{3, 11}));
  expectNoSources();
}

TEST_F(KeyboardWatcherTest, AReconcileCallMayDestroyTheWatcher) {
  isToDestroyTheWatcher_ = true;
  start();
  EXPECT_EQ(callsUntil(1000), Times{300});
  expectNoSources();
}

TEST_F(KeyboardWatcherTest, AWatcherThatReplacesAnotherCallsAlone) {
  start();
  plugAt(1);
  desktop_.runUntil(1.5);
  start();
  EXPECT_EQ(desktop_.hidDevices().appearedObservers(), 1U);
  EXPECT_EQ(callsUntil(310), Times{301.5});
}

/// How often the application runs hidutil in ten minutes in which a keyboard is plugged in and the
/// machine wakes.
std::size_t hidutilRunsInTenMinutes(bool isEnabled) {
  SimulatedDesktop desktop;
  desktop.standardUserDefaults().setBoolean("instantCapsLockEnabled", isEnabled);
  const auto delegate = std::make_shared<AppDelegate>(desktop);
  desktop.application().setDelegate(delegate);
  desktop.application().launch();
  desktop.runUntil(60);
  const std::size_t before = desktop.hidutil().calls().size();
  desktop.plugKeyboard();
  desktop.sleepAndWake(60);
  desktop.runUntil(660);
  return desktop.hidutil().calls().size() - before;
}

TEST(KeyboardWatcherOfTheApplication, CostsNothingWhileTheFeatureIsDisabled) {
  EXPECT_EQ(hidutilRunsInTenMinutes(false), 0U);
}

TEST(KeyboardWatcherOfTheApplication, SetsAndVerifiesForEachCallWhileTheFeatureIsEnabled) {
  // Debounced, follow-up, and twice the timer.
  EXPECT_EQ(hidutilRunsInTenMinutes(true), 4U * 2U);
}

using Names = std::vector<std::string>;

/// Tells by its end that a source was let go.
template <typename Source>
class NamedSource final : public Source {
 public:
  NamedSource(std::string name, Names& endings) : name_(std::move(name)), endings_(endings) {}
  NamedSource(const NamedSource&) = delete;
  NamedSource& operator=(const NamedSource&) = delete;
  ~NamedSource() override { endings_.push_back(name_); }

 private:
  std::string name_;
  Names& endings_;
};

/// Notes in which order a program opens its sources, and lets them go.
class OrderOfSources final : public test::DelegatingPlatform<SimulatedDesktop>,
                             private HidDevices,
                             private Workspace,
                             private Dispatch {
 public:
  HidDevices& hidDevices() override { return *this; }
  Workspace& workspace() override { return *this; }
  Dispatch& dispatch() override { return *this; }

  Names opened;
  Names ended;

 private:
  template <typename Source>
  std::unique_ptr<Source> open(const std::string& name) {
    opened.push_back(name);
    return std::make_unique<NamedSource<Source>>(name, ended);
  }
  std::unique_ptr<Observation> observeDeviceAppeared(std::function<void()> /*callback*/) override {
    return open<Observation>("devices");
  }
  std::variant<std::unique_ptr<Observation>, std::int32_t> openCapsLockKey(
      std::function<void(const KeyEvent&)> /*callback*/) override {
    return open<Observation>("input");
  }
  std::unique_ptr<Observation> observeDidWake(std::function<void()> /*callback*/) override {
    return open<Observation>("wake");
  }
  std::shared_ptr<MainQueue> mainQueue() override { return desktop_.dispatch().mainQueue(); }
  std::unique_ptr<SerialQueue> makeSerialQueue(const std::string& label) override {
    return desktop_.dispatch().makeSerialQueue(label);
  }
  std::unique_ptr<Timer> scheduleTimer(Seconds /*interval*/, Seconds /*tolerance*/,
                                       std::function<void()> /*tick*/) override {
    return open<Timer>("timer");
  }
};

TEST(KeyboardWatcherSources, AreOpenedInOrderAndLetGoInOrder) {
  OrderOfSources platform;
  const auto watcher = std::make_shared<KeyboardWatcher>(platform, [] {});
  watcher->start();
  EXPECT_EQ(platform.opened, (Names{"devices", "wake", "timer"}));
  EXPECT_EQ(platform.ended, Names{});
  watcher->stop();
  EXPECT_EQ(platform.ended, (Names{"wake", "timer", "devices"}));
}

}  // namespace
}  // namespace zephlin
