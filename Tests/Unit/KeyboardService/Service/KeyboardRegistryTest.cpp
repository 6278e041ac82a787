#include <gtest/gtest.h>

#include <filesystem>

#include "KeyboardService/Service/KeyboardRegistry.h"
#include "KeyboardService/Service/PropertyStore.h"
#include "KeyboardService/Service/VirtualKeyboardBus.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Unit/KeyboardService/Support/ErrorText.h"
#include "Tests/Unit/KeyboardService/Support/FakeKeyboardBus.h"

namespace zephlin {
namespace {

constexpr RegistryID firstID{0x100000001};
constexpr RegistryID secondID{0x100000002};
constexpr RegistryID thirdID{0x100000003};
constexpr BusHandle firstHandle{1};
constexpr BusHandle secondHandle{2};
constexpr BusHandle three{3};

/// Three keyboards on a fake bus.
class KeyboardRegistryTest : public testing::Test {
 protected:
  KeyboardRegistryTest()
      : limitedLog(loop, [this](const std::string& line) { log.push_back(line); }),
        registry(limitedLog) {
    bus.start(registry);
    bus.plug(firstHandle);
    bus.plug(secondHandle, "Second");
    bus.plug(three);
  }

  [[nodiscard]] std::vector<KeyboardValue> values(std::string_view key) const {
    return registry.get({}, key);
  }

  std::size_t set(const Matching& matching, const PropertySet& properties) {
    return registry.set(registry.matching(matching), properties);
  }

  EventLoop loop;
  std::vector<std::string> log;
  LimitedLog limitedLog;
  FakeKeyboardBus bus;
  KeyboardRegistry registry;
};

Matching only(RegistryID registryID) {
  Matching matching;
  matching.registryID = registryID;
  return matching;
}

TEST_F(KeyboardRegistryTest, NumbersKeyboardsInTheOrderOfTheirAppearance) {
  const auto keyboards = registry.list({});
  ASSERT_EQ(keyboards.size(), 3U);
  EXPECT_EQ(keyboards.at(0).registryID, firstID);
  EXPECT_EQ(keyboards.at(1).registryID, secondID);
  EXPECT_EQ(keyboards.at(1).description.product, "Second");
  EXPECT_EQ(toText(firstID), "100000001");
}

TEST_F(KeyboardRegistryTest, NeverGivesTheSameRegistryIDTwice) {
  bus.pull(three);
  bus.plug(three);
  EXPECT_EQ(registry.list({}).back().registryID, RegistryID{0x100000004});
}

TEST_F(KeyboardRegistryTest, PropertiesGoWithTheKeyboard) {
  set({}, {{"A", 1}});
  bus.pull(secondHandle);
  bus.plug(secondHandle);
  const std::vector<KeyboardValue> expected{
      {firstID, 1}, {thirdID, 1}, {RegistryID{0x100000004}, std::nullopt}};
  EXPECT_EQ(values("A"), expected);
}

TEST_F(KeyboardRegistryTest, SetsOnlyTheGivenKeyboardsAndCountsThoseThatChange) {
  EXPECT_EQ(set(only(secondID), {{"A", 7}}), 1U);
  const std::vector<KeyboardValue> expected{
      {firstID, std::nullopt}, {secondID, 7}, {thirdID, std::nullopt}};
  EXPECT_EQ(values("A"), expected);
  EXPECT_EQ(set({}, {{"A", 7}}), 2U);
}

TEST_F(KeyboardRegistryTest, HandsTheBusAllPropertiesOfAKeyboardOldAndNew) {
  set({}, {{"A", 1}, {"B", 2}});
  set({}, {{"B", 3}});
  EXPECT_EQ(bus.carried.at(secondHandle), (PropertySet{{"A", 1}, {"B", 3}}));
}

TEST_F(KeyboardRegistryTest, DoesNotTroubleTheBusWithWhatIsInForce) {
  set({}, {{"A", 1}});
  bus.applied.clear();
  set({}, {{"A", 1}});
  EXPECT_TRUE(bus.applied.empty());
}

TEST_F(KeyboardRegistryTest, WhatOneKeyboardCannotCarryChangesNone) {
  set({}, {{"A", 1}});
  bus.applied.clear();
  FakeKeyboardBus other;
  other.start(registry);
  other.plug(firstHandle);
  other.refuses = true;
  EXPECT_EQ(requestErrorOf([&] {
              set({}, {{"A", 2}, {"B", 3}});
            }),
            "keyboard 100000004 refused: the cable is loose; nothing is changed");
  EXPECT_TRUE(bus.applied.empty());
  EXPECT_EQ(values("A").front().value, 1);
  EXPECT_EQ(values("B").front().value, std::nullopt);
}

TEST_F(KeyboardRegistryTest, AKeyboardHoldsOnlySoManyProperties) {
  PropertySet many;
  for (int index = 0; index < 64; ++index) {
    many[std::string("K").append(std::to_string(index))] = index;
  }
  set(only(secondID), many);
  bus.applied.clear();
  EXPECT_EQ(requestErrorOf([&] {
              set({}, {{"K0", 5}, {"Another", 1}});
            }),
            "keyboard 100000002 would have more than 64 properties; nothing is changed; set only "
            "properties that it has");
  EXPECT_TRUE(bus.applied.empty());
  EXPECT_EQ(values("K0").at(1).value, 0);
  set({}, {{"K0", 5}, {"CapsLockDelayOverride", 0}});
  EXPECT_EQ(values("K0").at(1).value, 5);
  EXPECT_EQ(values("CapsLockDelayOverride").at(1).value, 0);
}

TEST_F(KeyboardRegistryTest, KeepsTheKeyboardsOfSeveralBusesApart) {
  VirtualKeyboardBus virtualKeyboards(1);
  virtualKeyboards.start(registry);
  const RegistryID virtualID{0x100000004};
  EXPECT_EQ(registry.origin(firstID), (KeyboardRegistry::Origin{&bus, firstHandle}));
  EXPECT_EQ(registry.origin(virtualID)->bus, &virtualKeyboards);
  virtualKeyboards.pull(registry.origin(virtualID)->handle);
  EXPECT_EQ(registry.origin(virtualID), std::nullopt);
  EXPECT_EQ(registry.size(), 3U);
}

TEST_F(KeyboardRegistryTest, TellsTheListenerOfEachKeyboardThatItThenHas) {
  std::vector<std::size_t> sizes;
  std::vector<RegistryID> appeared;
  registry.onAppeared([&](RegistryID registryID) {
    appeared.push_back(registryID);
    sizes.push_back(registry.size());
  });
  bus.plug(BusHandle{4});
  bus.pull(firstHandle);
  bus.plug(firstHandle);
  EXPECT_EQ(appeared, (std::vector{RegistryID{0x100000004}, RegistryID{0x100000005}}));
  EXPECT_EQ(sizes, (std::vector<std::size_t>{4, 4}));
}

TEST_F(KeyboardRegistryTest, AKeyboardWhoseBusDropsItsPropertiesStaysWithoutThem) {
  set({}, {{"A", 1}});
  bus.dropProperties(secondHandle);
  EXPECT_EQ(values("A"),
            (std::vector<KeyboardValue>{{firstID, 1}, {secondID, std::nullopt}, {thirdID, 1}}));
  set({}, {{"A", 1}});
  EXPECT_EQ(bus.carried.at(secondHandle), (PropertySet{{"A", 1}}));
  bus.dropProperties(BusHandle{99});
  EXPECT_EQ(registry.size(), 3U);
}

TEST_F(KeyboardRegistryTest, IgnoresTheDisappearanceOfAKeyboardThatItDoesNotKnow) {
  bus.pull(BusHandle{99});
  EXPECT_EQ(registry.size(), 3U);
}

TEST_F(KeyboardRegistryTest, LogsWhatComesAndGoes) {
  log.clear();
  bus.plug(BusHandle{4}, "Evil\nKeys");
  bus.pull(BusHandle{4});
  EXPECT_EQ(log, (std::vector<std::string>{R"(keyboard 100000004 plugged: "Evil\x0aKeys", USB)",
                                           "keyboard 100000004 pulled"}));
}

/// The state of the second keyboard as listings show it.
std::string stateIn(const KeyboardRegistry& registry) {
  return registry.list(only(secondID)).front().state;
}

TEST_F(KeyboardRegistryTest, TheDelayOfCapsLockReadsBackOnlyWhileItIsInForce) {
  const PropertySet instant{{"CapsLockDelayOverride", 0}, {"A", 1}};
  bus.becomes = KeyboardState{settling, "a key is held down"};
  set(only(secondID), instant);
  EXPECT_EQ(values("CapsLockDelayOverride").at(1).value, std::nullopt);
  EXPECT_EQ(values("A").at(1).value, 1);
  EXPECT_EQ(stateIn(registry), "a key is held down");
  bus.report(secondHandle, {inForce, "watched"});
  EXPECT_EQ(values("CapsLockDelayOverride").at(1).value, 0);
  EXPECT_EQ(stateIn(registry), "watched");
  bus.report(secondHandle, {notInForce, "held by another program"});
  EXPECT_EQ(values("CapsLockDelayOverride").at(1).value, std::nullopt);
}

TEST_F(KeyboardRegistryTest, ADelayThatLeavesTheKeyboardAloneReadsBackOnceItIs) {
  set(only(secondID), {{"CapsLockDelayOverride", 0}});
  set(only(secondID), {{"CapsLockDelayOverride", -1}});
  EXPECT_EQ(values("CapsLockDelayOverride").at(1).value, -1);
  EXPECT_EQ(stateIn(registry), "default");
  bus.report(secondHandle, {settling, "letting go"});
  EXPECT_EQ(values("CapsLockDelayOverride").at(1).value, std::nullopt);
}

TEST_F(KeyboardRegistryTest, TheOutcomeNamesTheKeyboardsThatDoNotDoAsAsked) {
  const PropertySet instant{{"CapsLockDelayOverride", 0}};
  const auto all = registry.matching({});
  set({}, instant);
  bus.report(secondHandle, {notInForce, "no permission"});
  EXPECT_EQ(registry.outcome(all, instant),
            (SetResponse{{firstID, thirdID}, {{secondID, "no permission"}}}));
  bus.pull(three);
  set(only(firstID), {{"CapsLockDelayOverride", 100}});
  EXPECT_EQ(registry.outcome(all, instant),
            (SetResponse{{},
                         {{firstID, "its properties were changed again meanwhile"},
                          {secondID, "no permission"}}}));
  set({}, {{"A", 1}});
  EXPECT_EQ(registry.outcome({secondID}, {{"A", 1}}), (SetResponse{{secondID}, {}}));
}

TEST_F(KeyboardRegistryTest, AsksKeyboardsThatAreNotLeftAloneAndNotAgainForAWhile) {
  set(only(secondID), {{"CapsLockDelayOverride", 0}});
  EXPECT_EQ(bus.checked, std::vector{secondHandle});
  registry.check(registry.matching({}));
  EXPECT_EQ(bus.checked, std::vector{secondHandle});
  KeyboardRegistry impatient(limitedLog, std::chrono::milliseconds(-1));
  FakeKeyboardBus asked;
  asked.start(impatient);
  asked.plug(firstHandle);
  asked.plug(secondHandle);
  impatient.set({secondID}, {{"CapsLockDelayOverride", 0}});
  impatient.check(impatient.matching({}));
  EXPECT_EQ(asked.checked, (std::vector{secondHandle, secondHandle}));
  asked.answers = false;
  impatient.check({secondID});
  impatient.check({secondID});
  EXPECT_EQ(asked.checked.size(), 3U);
}

TEST_F(KeyboardRegistryTest, IsSettledWhenNothingIsOpen) {
  bus.answers = false;
  set(only(secondID), {{"CapsLockDelayOverride", 0}});
  EXPECT_FALSE(registry.isSettled({firstID, secondID}));
  EXPECT_TRUE(registry.isSettled({firstID}));
  int reports = 0;
  registry.onReported([&] { ++reports; });
  bus.answer(secondHandle);
  EXPECT_TRUE(registry.isSettled({secondID}));
  EXPECT_EQ(reports, 1);
  bus.report(secondHandle, {settling, "a key is held down"});
  EXPECT_FALSE(registry.isSettled({secondID}));
  EXPECT_EQ(reports, 2);
  bus.pull(secondHandle);
  EXPECT_TRUE(registry.isSettled({secondID}));
  EXPECT_EQ(reports, 3);
}

TEST_F(KeyboardRegistryTest, AKeyboardThatDoesNotAnswerIsNotInForceUntilItDoes) {
  bus.answers = false;
  set(only(secondID), {{"CapsLockDelayOverride", 0}});
  registry.giveUpOn({firstID, secondID});
  EXPECT_TRUE(registry.isSettled({firstID, secondID}));
  EXPECT_EQ(stateIn(registry), "does not answer");
  EXPECT_EQ(values("CapsLockDelayOverride").at(1).value, std::nullopt);
  EXPECT_EQ(registry.list(only(firstID)).front().state, "default");
  bus.report(secondHandle, {inForce, "watched"});
  EXPECT_FALSE(registry.isSettled({secondID}));
  bus.answer(secondHandle);
  EXPECT_TRUE(registry.isSettled({secondID}));
  EXPECT_EQ(stateIn(registry), "watched");
}

TEST_F(KeyboardRegistryTest, LogsOnceWhatIsNotInForceAndOnceWhenItIsAgain) {
  set(only(secondID), {{"CapsLockDelayOverride", 0}});
  log.clear();
  for (int time = 0; time < 2; ++time) {
    bus.report(secondHandle, {notInForce, "held by another program: evil\nkeys (pid 4)"});
    bus.report(secondHandle, {settling, "not ready yet"});
  }
  bus.report(secondHandle, {inForce, "watched"});
  bus.report(secondHandle, {inForce, "watched"});
  bus.report(secondHandle, {settling, "letting go"});
  bus.report(secondHandle, {});
  EXPECT_EQ(log, (std::vector<std::string>{
                     R"(keyboard 100000002 is not in force: held by another program: evil\x0akeys)"
                     " (pid 4)",
                     "keyboard 100000002 is in force again: watched"}));
}

TEST_F(KeyboardRegistryTest, AStateThatChangesAllTheTimeDoesNotFillTheLog) {
  log.clear();
  for (int time = 0; time < 1000; ++time) {
    bus.report(secondHandle, {notInForce, std::to_string(time)});
  }
  EXPECT_EQ(log.size(), 20U);
}

TEST_F(KeyboardRegistryTest, PropertiesArePutBackWhereTheKeyboardStayedPluggedIn) {
  const test::TemporaryDirectory directory;
  const auto storeOfBoot = [&](const char* boot) {
    return PropertyStore(directory.file("state"), boot, [](const std::string&) {});
  };
  const PropertySet instant{{"CapsLockDelayOverride", 0}};
  const auto restarted = [&](const char* boot) {
    PropertyStore store = storeOfBoot(boot);
    KeyboardRegistry next(limitedLog);
    next.keepIn(store);
    FakeKeyboardBus again;
    again.start(next);
    again.plug(firstHandle, "Fake", "", "/sys/input1");
    again.plug(secondHandle, "Fake", "", "/sys/input3");
    again.plug(three);
    return next.get({}, "CapsLockDelayOverride");
  };
  PropertyStore store = storeOfBoot("one");
  registry.keepIn(store);
  for (const int number : {1, 2}) {
    bus.plug(BusHandle{static_cast<std::uint64_t>(10 + number)}, "Fake", "",
             "/sys/input" + std::to_string(number));
  }
  set({}, instant);
  const std::vector<KeyboardValue> putBack{
      {firstID, 0}, {secondID, std::nullopt}, {thirdID, std::nullopt}};
  EXPECT_EQ(restarted("one"), putBack);
  EXPECT_EQ(restarted("one"), putBack);
  const std::vector<KeyboardValue> none{
      {firstID, std::nullopt}, {secondID, std::nullopt}, {thirdID, std::nullopt}};
  EXPECT_EQ(restarted("two"), none);
  bus.pull(BusHandle{11});
  EXPECT_EQ(restarted("one"), none);
  EXPECT_TRUE(std::filesystem::exists(directory.file("state")));
  bus.dropProperties(BusHandle{12});
  EXPECT_FALSE(std::filesystem::exists(directory.file("state")));
}

TEST(VirtualKeyboardBus, HasAtMost256KeyboardsAtOnce) {
  EventLoop loop;
  LimitedLog log(loop, [](const std::string&) {});
  KeyboardRegistry registry(log);
  VirtualKeyboardBus bus(256);
  bus.start(registry);
  EXPECT_EQ(registry.size(), 256U);
  EXPECT_THROW(bus.plug(), RequestError);
  EXPECT_EQ(registry.size(), 256U);
  bus.pull(BusHandle{1});
  EXPECT_NO_THROW(bus.plug());
  EXPECT_EQ(registry.size(), 256U);
}

TEST(VirtualKeyboardBus, DescribesItsKeyboardsWhichAreAlwaysInForce) {
  EventLoop loop;
  LimitedLog log(loop, [](const std::string&) {});
  KeyboardRegistry registry(log);
  VirtualKeyboardBus bus(2);
  bus.start(registry);
  const KeyboardDescription expected{1, 6, 0, 2, "Virtual Keyboard 2", "Virtual", ""};
  EXPECT_EQ(registry.list({}).back().description, expected);
  EXPECT_EQ(stateIn(registry), "default");
  registry.set({secondID}, {{"CapsLockDelayOverride", INT64_MAX}});
  EXPECT_EQ(stateIn(registry), "virtual");
  EXPECT_TRUE(registry.isSettled({secondID}));
}

}  // namespace
}  // namespace zephlin
