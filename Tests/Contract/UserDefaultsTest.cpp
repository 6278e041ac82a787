#include "Tests/Contract/ContractTest.h"

namespace zephlin::contract {
namespace {

class UserDefaultsTest : public ContractTest {
 protected:
  UserDefaults& defaults() { return platform().standardUserDefaults(); }
};

TEST_F(UserDefaultsTest, WhatWasNeverStoredIsAbsent) {
  EXPECT_EQ(defaults().boolean("key"), std::nullopt);
}

TEST_F(UserDefaultsTest, AStoredBooleanIsReadBack) {
  defaults().setBoolean("yes", true);
  defaults().setBoolean("no", false);
  EXPECT_EQ(defaults().boolean("yes"), true);
  EXPECT_EQ(defaults().boolean("no"), false);
  defaults().setBoolean("yes", false);
  EXPECT_EQ(defaults().boolean("yes"), false);
}

TEST_F(UserDefaultsTest, StoredValuesSurviveANewStart) {
  defaults().setBoolean("key", false);
  defaults().setDouble("number", 1);
  desktop().restartPlatform();
  EXPECT_EQ(defaults().boolean("key"), false);
  EXPECT_EQ(defaults().boolean("number"), std::nullopt);
}

TEST_F(UserDefaultsTest, ANumberIsNoBoolean) {
  defaults().setDouble("key", 1);
  EXPECT_EQ(defaults().boolean("key"), std::nullopt);
  defaults().setBoolean("key", true);
  EXPECT_EQ(defaults().boolean("key"), true);
}

TEST_F(UserDefaultsTest, ATruthIsABooleanThatIsTrueOrANumberOtherThanZero) {
  EXPECT_FALSE(defaults().boolForKey("key"));
  defaults().setBoolean("key", true);
  EXPECT_TRUE(defaults().boolForKey("key"));
  defaults().setBoolean("key", false);
  EXPECT_FALSE(defaults().boolForKey("key"));
  defaults().setDouble("key", 1);
  EXPECT_TRUE(defaults().boolForKey("key"));
  defaults().setDouble("key", 0);
  EXPECT_FALSE(defaults().boolForKey("key"));
}

TEST_F(UserDefaultsTest, AStoredTextIsNoBoolean) {
  for (const char* const text : {"true", "YES", "1", ""}) {
    desktop().storeTextInDefaults("key", text);
    EXPECT_EQ(defaults().boolean("key"), std::nullopt) << text;
  }
}

TEST_F(UserDefaultsTest, SettingsThatWereLostCanBeStoredAnew) {
  defaults().setBoolean("key", true);
  desktop().spoilDefaults();
  EXPECT_EQ(defaults().boolean("key"), std::nullopt);
  defaults().setBoolean("key", false);
  desktop().restartPlatform();
  EXPECT_EQ(defaults().boolean("key"), false);
}

}  // namespace
}  // namespace zephlin::contract
