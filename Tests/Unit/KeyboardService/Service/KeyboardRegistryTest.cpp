#include <gtest/gtest.h>

#include "KeyboardService/Service/KeyboardRegistry.h"
#include "KeyboardService/Service/VirtualKeyboardBus.h"
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
  KeyboardRegistryTest() : registry([this](const std::string& line) { log.push_back(line); }) {
    bus.start(registry);
    bus.plug(firstHandle);
    bus.plug(secondHandle, "Second");
    bus.plug(three);
  }

  [[nodiscard]] std::vector<KeyboardValue> values(std::string_view key) const {
    return registry.get({}, key);
  }

  std::vector<std::string> log;
  FakeKeyboardBus bus;
  KeyboardRegistry registry;
};

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
  registry.set({}, {{"A", 1}});
  bus.pull(secondHandle);
  bus.plug(secondHandle);
  const std::vector<KeyboardValue> expected{
      {firstID, 1}, {thirdID, 1}, {RegistryID{0x100000004}, std::nullopt}};
  EXPECT_EQ(values("A"), expected);
}

TEST_F(KeyboardRegistryTest, SetsOnlyWhatMatchesAndSaysWhat) {
  Matching second;
  second.product = "Second";
  EXPECT_EQ(registry.set(second, {{"A", 7}}), std::vector{secondID});
  const std::vector<KeyboardValue> expected{
      {firstID, std::nullopt}, {secondID, 7}, {thirdID, std::nullopt}};
  EXPECT_EQ(values("A"), expected);
}

TEST_F(KeyboardRegistryTest, HandsTheBusAllPropertiesOfAKeyboardOldAndNew) {
  registry.set({}, {{"A", 1}, {"B", 2}});
  registry.set({}, {{"B", 3}});
  EXPECT_EQ(bus.carried.at(secondHandle), (PropertySet{{"A", 1}, {"B", 3}}));
}

TEST_F(KeyboardRegistryTest, DoesNotTroubleTheBusWithWhatIsInForce) {
  registry.set({}, {{"A", 1}});
  bus.applied.clear();
  registry.set({}, {{"A", 1}});
  EXPECT_TRUE(bus.applied.empty());
}

TEST_F(KeyboardRegistryTest, ARefusalPartWayRollsBackTheKeyboardsAlreadyChanged) {
  registry.set({}, {{"A", 1}});
  bus.applied.clear();
  bus.refusing.insert(three);
  EXPECT_EQ(requestErrorOf([&] {
              registry.set({}, {{"A", 2}, {"B", 3}});
            }),
            "keyboard 100000003 refused: the cable is loose; nothing is changed");
  EXPECT_EQ(bus.applied, (std::vector{firstHandle, secondHandle, secondHandle, firstHandle}));
  EXPECT_EQ(bus.carried.at(firstHandle), (PropertySet{{"A", 1}}));
  EXPECT_EQ(bus.carried.at(secondHandle), (PropertySet{{"A", 1}}));
  EXPECT_EQ(values("A"), (std::vector<KeyboardValue>{{firstID, 1}, {secondID, 1}, {thirdID, 1}}));
  EXPECT_EQ(values("B").front().value, std::nullopt);
}

TEST_F(KeyboardRegistryTest, AKeyboardThatCannotBeRolledBackIsNamed) {
  bus.refusing.insert(three);
  bus.refusesToRestore = true;
  EXPECT_EQ(requestErrorOf([&] {
              registry.set({}, {{"A", 2}});
            }),
            "keyboard 100000003 refused: the cable is loose; could not be undone on 100000002 "
            "100000001, replug these keyboards");
  EXPECT_EQ(values("A").front().value, std::nullopt);
}

TEST_F(KeyboardRegistryTest, AKeyboardHoldsOnlySoManyProperties) {
  PropertySet many;
  for (int index = 0; index < 64; ++index) {
    many[std::string("K").append(std::to_string(index))] = index;
  }
  Matching second;
  second.registryID = secondID;
  registry.set(second, many);
  bus.applied.clear();
  EXPECT_EQ(requestErrorOf([&] {
              registry.set({}, {{"K0", 5}, {"Another", 1}});
            }),
            "keyboard 100000002 would have more than 64 properties; nothing is changed; set only "
            "properties that it has");
  EXPECT_TRUE(bus.applied.empty());
  EXPECT_EQ(values("K0").at(1).value, 0);
  registry.set({}, {{"K0", 5}, {"CapsLockDelayOverride", 0}});
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
  registry.set({}, {{"A", 1}});
  bus.dropProperties(secondHandle);
  EXPECT_EQ(values("A"),
            (std::vector<KeyboardValue>{{firstID, 1}, {secondID, std::nullopt}, {thirdID, 1}}));
  registry.set({}, {{"A", 1}});
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

TEST(VirtualKeyboardBus, HasAtMost256KeyboardsAtOnce) {
  KeyboardRegistry registry([](const std::string&) {});
  VirtualKeyboardBus bus(256);
  bus.start(registry);
  EXPECT_EQ(registry.size(), 256U);
  EXPECT_THROW(bus.plug(), RequestError);
  EXPECT_EQ(registry.size(), 256U);
  bus.pull(BusHandle{1});
  EXPECT_NO_THROW(bus.plug());
  EXPECT_EQ(registry.size(), 256U);
}

TEST(VirtualKeyboardBus, DescribesItsKeyboards) {
  KeyboardRegistry registry([](const std::string&) {});
  VirtualKeyboardBus bus(2);
  bus.start(registry);
  const KeyboardDescription expected{1, 6, 0, 2, "Virtual Keyboard 2", "Virtual", ""};
  EXPECT_EQ(registry.list({}).back().description, expected);
}

}  // namespace
}  // namespace zephlin
