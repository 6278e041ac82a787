#include <optional>
#include <variant>

#include "Tests/Contract/ContractTest.h"

namespace zephlin::contract {
namespace {

using Values = std::vector<bool>;

class InputTest : public ContractTest {
 protected:
  std::unique_ptr<Observation> open(std::function<void(const KeyEvent&)> callback) {
    auto opened = platform().hidDevices().openCapsLockKey(std::move(callback));
    EXPECT_TRUE(std::holds_alternative<std::unique_ptr<Observation>>(opened));
    return std::move(std::get<std::unique_ptr<Observation>>(opened));
  }

  std::unique_ptr<Observation> listen(std::function<void(const FlagsEvent&)> callback) {
    return platform().eventTaps().listenToFlagsChanged(std::move(callback));
  }

  bool isCapsLockOn() {
    return (platform().eventTaps().currentModifierFlags() & modifierCapsLock) != 0;
  }

  void tapCapsLock() {
    const bool wasOn = isCapsLockOn();
    desktop().pressCapsLock();
    desktop().releaseCapsLock();
    EXPECT_TRUE(runUntil([&] { return isCapsLockOn() != wasOn; }));
  }
};

TEST_F(InputTest, ThePressChannelTellsDownAndUpInOrder) {
  Values values;
  const auto key = open([&](const KeyEvent& event) { values.push_back(event.isDown); });
  tapCapsLock();
  tapCapsLock();
  EXPECT_TRUE(runUntil([&] { return values.size() >= 4; }));
  settle();
  EXPECT_EQ(values, (Values{1, 0, 1, 0}));
}

TEST_F(InputTest, TheEventTapTellsEachToggle) {
  std::vector<bool> states;
  const auto tap = listen([&](const FlagsEvent& event) {
    const bool isOn = (event.flags & modifierCapsLock) != 0;
    if (event.changeTime && (states.empty() || states.back() != isOn)) {
      states.push_back(isOn);
    }
  });
  ASSERT_NE(tap, nullptr);
  ASSERT_FALSE(isCapsLockOn());
  tapCapsLock();
  EXPECT_TRUE(isCapsLockOn());
  tapCapsLock();
  EXPECT_FALSE(isCapsLockOn());
  EXPECT_TRUE(runUntil([&] { return states.size() == 2; }));
  EXPECT_EQ(states, (std::vector<bool>{true, false}));
}

TEST_F(InputTest, ATogglesTimeIsNotBeforeThatOfItsPress) {
  std::optional<EventTime> press;
  std::optional<EventTime> toggle;
  const auto key = open([&](const KeyEvent& event) {
    if (event.isDown) {
      press = event.time;
    }
  });
  const auto tap = listen([&](const FlagsEvent& event) {
    if (event.changeTime) {
      toggle = event.changeTime;
    }
  });
  tapCapsLock();
  EXPECT_TRUE(runUntil([&] { return press && toggle; }));
  EXPECT_GE(*toggle, *press);
  EXPECT_LT(*toggle - *press, Seconds(1));
  tapCapsLock();
}

TEST_F(InputTest, NothingIsDeliveredDuringAModalAlert) {
  Values values;
  int changes = 0;
  const auto key = open([&](const KeyEvent& event) { values.push_back(event.isDown); });
  const auto tap = listen([&](const FlagsEvent& event) { changes += event.changeTime ? 1 : 0; });
  mainQueue()->post([&] {
    tapCapsLock();
    settle();
    EXPECT_EQ(values, Values{});
    EXPECT_EQ(changes, 0);
    desktop().dismissAlert();
  });
  platform().alerts().runModal(
      {.messageText = "Message", .informativeText = "", .buttons = {"OK"}});
  // The platform may deliver now what it held back, or drop it.
  settle();
  values.clear();
  changes = 0;
  tapCapsLock();
  EXPECT_TRUE(runUntil([&] { return values == Values{1, 0} && changes > 0; }));
}

TEST_F(InputTest, ObservationsEndWithTheirObjects) {
  int calls = 0;
  auto key = open([&](const KeyEvent&) { ++calls; });
  auto tap = listen([&](const FlagsEvent&) { ++calls; });
  key.reset();
  tap.reset();
  tapCapsLock();
  settle();
  EXPECT_EQ(calls, 0);
  tapCapsLock();
}

TEST_F(InputTest, ObservationsMayEndWithinTheirOwnCallbacks) {
  int presses = 0;
  int changes = 0;
  std::unique_ptr<Observation> key;
  std::unique_ptr<Observation> tap;
  key = open([&](const KeyEvent&) {
    key.reset();
    ++presses;
  });
  tap = listen([&](const FlagsEvent&) {
    tap.reset();
    ++changes;
  });
  tapCapsLock();
  tapCapsLock();
  EXPECT_TRUE(runUntil([&] { return presses > 0 && changes > 0; }));
  settle();
  EXPECT_EQ(presses, 1);
  EXPECT_EQ(changes, 1);
}

}  // namespace
}  // namespace zephlin::contract
