#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <optional>

#include "KeyboardService/Service/Evdev/EvdevKeyboardBus.h"
#include "Tests/Unit/KeyboardService/Support/ErrorText.h"
#include "Tests/Unit/KeyboardService/Support/FakeKeyboardHandling.h"

namespace zephlin {
namespace {

using Kind = KeyboardState::Kind;
using Texts = std::vector<std::string>;

const PropertySet instant{{"CapsLockDelayOverride", 0}};
const PropertySet held{{"CapsLockDelayOverride", 100}};
const PropertySet byDefault{{"CapsLockDelayOverride", -1}};

/// Notes what the bus reports, and the state of each keyboard.
class FakeObserver final : public KeyboardBusObserver {
 public:
  void keyboardAppeared(KeyboardBus& /*bus*/, BusHandle handle,
                        const KeyboardDescription& /*description*/,
                        const std::string& identity) override {
    events.push_back("appeared " + identity);
    states[handle] = {};
  }
  void keyboardDisappeared(KeyboardBus& /*bus*/, BusHandle handle) override {
    events.emplace_back("disappeared");
    states.erase(handle);
  }
  void stateChanged(KeyboardBus& /*bus*/, BusHandle handle, const KeyboardState& state) override {
    if (std::exchange(states.at(handle), state) != state) {
      events.push_back(state.text);
    }
  }
  void checked(KeyboardBus& /*bus*/, BusHandle handle) override {
    EXPECT_TRUE(states.contains(handle));
    events.emplace_back("checked");
  }
  void propertiesDropped(KeyboardBus& /*bus*/, BusHandle handle) override {
    EXPECT_TRUE(states.contains(handle));
    events.emplace_back("dropped");
  }

  Texts events;
  std::map<BusHandle, KeyboardState> states;
};

class EvdevKeyboardBusTest : public testing::Test {
 protected:
  EvdevKeyboardBusTest() {
    const auto make = [this](const KeyboardNode& node, const std::string& way) {
      probes.push_back(std::make_shared<HandlingProbe>(next));
      probes.back()->note(way + ' ' + node.path);
      return makeFake(probes.back());
    };
    bus.emplace(
        loop,
        EvdevKeyboardBus::Devices{[this](auto appears, auto disappears) {
                                    appeared = appears;
                                    disappeared = disappears;
                                  },
                                  [make](const KeyboardNode& node) { return make(node, "watch"); },
                                  [make](const KeyboardNode& node, CapsLockRule rule) {
                                    return make(node, "grab for " +
                                                          std::to_string(rule.hold.count()) + '+' +
                                                          std::to_string(rule.gap.count()));
                                  }},
        std::chrono::milliseconds(5), [this](const std::string& line) { log.push_back(line); });
    bus->start(observer);
    plug(1);
  }

  void plug(dev_t number, bool hasCapsLockLed = true, const std::string& seat = "seat0") {
    KeyboardNode node;
    node.number = number;
    node.path = "/dev/input/event" + std::to_string(number);
    node.systemPath = "/sys/" + std::to_string(number);
    node.hasCapsLockLed = hasCapsLockLed;
    node.description.seat = seat;
    appeared(node);
    observer.events.clear();
  }

  void turnUntilStateIs(const std::string& text, BusHandle handle = first) {
    turnUntil(loop, [&] { return observer.states.at(handle).text == text; });
  }

  /// The bus is asked, and answers.
  void check(BusHandle handle = first) {
    const auto answers = [this] {
      return std::count(observer.events.begin(), observer.events.end(), "checked");
    };
    const auto before = answers();
    bus->check(handle);
    turnUntil(loop, [&] { return answers() > before; });
  }

  static constexpr BusHandle first{1};
  static constexpr BusHandle second{2};

  EventLoop loop;
  FakeObserver observer;
  Texts log;
  HandlingProbeSettings next;
  std::vector<std::shared_ptr<HandlingProbe>> probes;
  EvdevKeyboardBus::Appeared appeared;
  EvdevKeyboardBus::Disappeared disappeared;
  std::optional<EvdevKeyboardBus> bus;
};

TEST_F(EvdevKeyboardBusTest, AKeyboardThatIsLeftAloneHasNoThread) {
  bus->applyProperties(first, {{"A", 1}});
  bus->applyProperties(first, byDefault);
  bus->check(first);
  EXPECT_TRUE(probes.empty());
  EXPECT_EQ(observer.events, Texts{"checked"});
}

TEST_F(EvdevKeyboardBusTest, ADelayOfNothingIsWatchedForWhereThereIsAnLed) {
  plug(2, false);
  bus->applyProperties(first, instant);
  EXPECT_EQ(observer.events, Texts{"not ready yet"});
  bus->applyProperties(second, instant);
  turnUntilStateIs("fake");
  turnUntilStateIs("fake", second);
  EXPECT_EQ(probes.at(0)->events(), (Texts{"watch /dev/input/event1", "made"}));
  EXPECT_EQ(probes.at(1)->events(), (Texts{"grab for 0+5000 /dev/input/event2", "made"}));
}

TEST_F(EvdevKeyboardBusTest, AnotherDelayNeedsAGrab) {
  bus->applyProperties(first, held);
  turnUntilStateIs("fake");
  bus->applyProperties(first, {{"CapsLockDelayOverride", 200}});
  check();
  EXPECT_EQ(probes.front()->events(),
            (Texts{"grab for 100+5000 /dev/input/event1", "made", "hold 200", "checked"}));
}

TEST_F(EvdevKeyboardBusTest, OnlyTheSeatOfClonesCanHaveOne) {
  plug(2, true, "seat1");
  bus->applyProperties(second, held);
  bus->check(second);
  EXPECT_EQ(observer.events, (Texts{"on seat1, which cannot have a clone", "checked"}));
  EXPECT_EQ(observer.states.at(second).kind, Kind::NotInForce);
  bus->applyProperties(second, instant);
  turnUntilStateIs("fake", second);
  EXPECT_EQ(probes.at(0)->events().front(), "watch /dev/input/event2");
}

TEST_F(EvdevKeyboardBusTest, IsLeftAloneOnlyOnceItHasBeenLetGo) {
  std::promise<void> mayEnd;
  next.mayEnd = mayEnd.get_future().share();
  bus->applyProperties(first, instant);
  turnUntilStateIs("fake");
  bus->applyProperties(first, byDefault);
  EXPECT_EQ(observer.states.at(first), (KeyboardState{Kind::Settling, "letting go"}));
  bus->check(first);
  EXPECT_EQ(observer.events.back(), "checked");
  EXPECT_EQ(observer.states.at(first).text, "letting go");
  mayEnd.set_value();
  turnUntilStateIs("default");
  EXPECT_EQ(probes.front()->events().back(), "ended");
}

TEST_F(EvdevKeyboardBusTest, AnotherWayBeginsWhenTheFormerHasEnded) {
  bus->applyProperties(first, instant);
  turnUntilStateIs("fake");
  next.initial = {Kind::Settling, "a key is held down"};
  bus->applyProperties(first, held);
  EXPECT_EQ(observer.states.at(first).text, "letting go");
  EXPECT_EQ(probes.size(), 1U);
  turnUntilStateIs("a key is held down");
  EXPECT_EQ(probes.at(0)->events().back(), "ended");
  EXPECT_EQ(probes.at(1)->events().front(), "grab for 100+5000 /dev/input/event1");
}

TEST_F(EvdevKeyboardBusTest, WhatCountsIsWhatWasAskedForLast) {
  for (int time = 0; time < 20; ++time) {
    for (const PropertySet& properties : {instant, byDefault, held, instant}) {
      bus->applyProperties(first, properties);
      bus->check(first);
    }
  }
  turnUntilStateIs("fake");
  EXPECT_EQ(probes.back()->events().front(), "watch /dev/input/event1");
  bus->applyProperties(first, byDefault);
  turnUntilStateIs("default");
  EXPECT_EQ(std::count(observer.events.begin(), observer.events.end(), "checked"), 80);
}

TEST_F(EvdevKeyboardBusTest, PassesOnWhatIsReportedWhileItCounts) {
  bus->applyProperties(first, instant);
  turnUntilStateIs("fake");
  probes.front()->loop->post([&probe = *probes.front()] {
    probe.report({Kind::NotInForce, "held by another program"});
  });
  turnUntilStateIs("held by another program");
  EXPECT_EQ(observer.states.at(first).kind, Kind::NotInForce);
}

TEST_F(EvdevKeyboardBusTest, AQuestionIsAnsweredAlsoIfTheThreadIsAskedToEndMeanwhile) {
  std::promise<void> mayCheck;
  next.mayCheck = mayCheck.get_future().share();
  bus->applyProperties(first, instant);
  turnUntilStateIs("fake");
  observer.events.clear();
  bus->check(first);
  bus->check(first);
  EXPECT_EQ(observer.events, Texts{});
  bus->applyProperties(first, byDefault);
  EXPECT_EQ(observer.events, (Texts{"letting go", "checked", "checked"}));
  mayCheck.set_value();
  turnUntilStateIs("default");
  EXPECT_EQ(observer.events, (Texts{"letting go", "checked", "checked", "default"}));
}

TEST_F(EvdevKeyboardBusTest, AKeyboardMayGoAndAnotherComeWhileItIsLetGo) {
  std::promise<void> mayEnd;
  next.mayEnd = mayEnd.get_future().share();
  bus->applyProperties(first, instant);
  turnUntilStateIs("fake");
  bus->check(first);
  disappeared(1);
  EXPECT_EQ(observer.events.back(), "disappeared");
  next = {};
  plug(1);
  bus->applyProperties(first, instant);
  turnUntilStateIs("fake");
  EXPECT_EQ(observer.events, (Texts{"not ready yet", "fake"}));
  mayEnd.set_value();
  turnUntil(loop, [&] { return probes.at(0)->events().back() == "ended"; });
  EXPECT_EQ(probes.at(1)->events().back(), "made");
}

TEST_F(EvdevKeyboardBusTest, AFailureIsAStateUntilTheNextQuestion) {
  next.failsToStart = true;
  bus->applyProperties(first, instant);
  bus->check(first);
  turnUntilStateIs("no luck");
  EXPECT_EQ(observer.states.at(first).kind, Kind::NotInForce);
  EXPECT_EQ(observer.events, (Texts{"not ready yet", "no luck", "checked"}));
  next.failsToStart = false;
  check();
  EXPECT_EQ(observer.states.at(first).text, "fake");
}

TEST_F(EvdevKeyboardBusTest, LooksAgainWhenAnotherKeyboardComesOrGoes) {
  bus->applyProperties(first, instant);
  turnUntilStateIs("fake");
  const auto timesChecked = [this] {
    const Texts events = probes.at(0)->events();
    return std::count(events.begin(), events.end(), "checked");
  };
  const auto before = timesChecked();
  plug(2);
  turnUntil(loop, [&] { return timesChecked() == before + 1; });
  disappeared(2);
  turnUntil(loop, [&] { return timesChecked() == before + 2; });
}

TEST_F(EvdevKeyboardBusTest, TheEmergencyChordOnOneKeyboardLeavesAllToTheSystem) {
  plug(2);
  plug(3);
  bus->applyProperties(first, held);
  bus->applyProperties(second, instant);
  turnUntilStateIs("fake");
  turnUntilStateIs("fake", second);
  observer.events.clear();
  probes.front()->loop->post([&probe = *probes.front()] { probe.emergencyChord(); });
  turnUntilStateIs("default");
  turnUntilStateIs("default", second);
  EXPECT_EQ(std::count(observer.events.begin(), observer.events.end(), "dropped"), 3);
  for (const auto& probe : probes) {
    EXPECT_EQ(probe->events().back(), "ended");
  }
  EXPECT_EQ(log, Texts{"Backspace, Enter and Escape were held together: all keyboards are left to "
                       "the system and their properties cleared"});
}

TEST_F(EvdevKeyboardBusTest, LetsGoOfAllKeyboardsAtItsEnd) {
  plug(2);
  bus->applyProperties(first, instant);
  bus->applyProperties(second, instant);
  disappeared(2);
  bus.reset();
  for (const auto& probe : probes) {
    EXPECT_EQ(probe->events().back(), "ended");
  }
}

TEST_F(EvdevKeyboardBusTest, AKeyboardThatHasGoneIsNoError) {
  EXPECT_NO_THROW(bus->applyProperties(second, instant));
  EXPECT_NO_THROW(bus->check(second));
}

TEST_F(EvdevKeyboardBusTest, ATooLongDelayCannotBeCarried) {
  EXPECT_NO_THROW(bus->requireCarriable(held));
  EXPECT_EQ(requestErrorOf([&] {
              bus->requireCarriable({{"CapsLockDelayOverride", 60'001}});
            }),
            "CapsLockDelayOverride can be at most 60000 on this keyboard");
}

}  // namespace
}  // namespace zephlin
