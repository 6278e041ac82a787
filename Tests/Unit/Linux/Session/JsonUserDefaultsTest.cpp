#include <gtest/gtest.h>

#include <limits>

#include "Platform/Linux/Session/JsonUserDefaults.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Unit/Linux/Session/Files.h"
#include "Tests/Unit/Linux/Session/RecordingLog.h"

namespace zephlin {
namespace {

using test::contentOf;
using test::writeTo;

class JsonUserDefaultsTest : public testing::Test {
 protected:
  test::TemporaryDirectory directory_;
  const std::string path_ = directory_.file("zephlin/defaults.json");
  test::RecordingLog log_;
  JsonUserDefaults defaults_{path_, log_};
};

TEST_F(JsonUserDefaultsTest, AMissingFileIsAnEmptyStoreAndIsNotMadeByReading) {
  EXPECT_EQ(defaults_.boolean("key"), std::nullopt);
  EXPECT_FALSE(std::filesystem::exists(directory_.file("zephlin")));
  EXPECT_TRUE(log_.entries.empty());
}

TEST_F(JsonUserDefaultsTest, BooleansAndNumbersAreWrittenForAPersonToRead) {
  defaults_.setBoolean("isEnabled", false);
  defaults_.setDouble("lastTime", 0.1);
  EXPECT_EQ(contentOf(path_), "{\n  \"isEnabled\": false,\n  \"lastTime\": 0.1\n}\n");
}

TEST_F(JsonUserDefaultsTest, ABooleanIsReadBackByTheNextProcess) {
  defaults_.setBoolean("yes", true);
  defaults_.setBoolean("no", false);
  const JsonUserDefaults next(path_, log_);
  EXPECT_EQ(next.boolean("yes"), true);
  EXPECT_EQ(next.boolean("no"), false);
  EXPECT_EQ(next.boolean("neither"), std::nullopt);
}

TEST_F(JsonUserDefaultsTest, WhatAnotherProcessWritesIsSeenAtOnce) {
  defaults_.setBoolean("key", true);
  JsonUserDefaults(path_, log_).setBoolean("key", false);
  EXPECT_EQ(defaults_.boolean("key"), false);
}

TEST_F(JsonUserDefaultsTest, AValueOfAnotherTypeIsNoBoolean) {
  writeTo(path_, R"({"text":"true","number":1,"null":null,"array":[true],"object":{"text":true}})");
  for (const char* const key : {"text", "number", "null", "array", "object"}) {
    EXPECT_EQ(defaults_.boolean(key), std::nullopt) << key;
  }
}

TEST_F(JsonUserDefaultsTest, ASetKeepsAllElseAsItIsAndWhereItIs) {
  writeTo(path_, R"({"z":{"deep":[1,"ä\u0000",null]},"big":9223372036854775807,"key":1,
      "small":-9223372036854775808,"huge":18446744073709551615,"real":0.30000000000000004})");
  defaults_.setBoolean("key", true);
  EXPECT_EQ(contentOf(path_), R"({
  "z": {
    "deep": [
      1,
      "ä\u0000",
      null
    ]
  },
  "big": 9223372036854775807,
  "key": true,
  "small": -9223372036854775808,
  "huge": 18446744073709551615,
  "real": 0.30000000000000004
}
)");
}

TEST_F(JsonUserDefaultsTest, WhatWasMovedAsideIsNamedInTheLogOnce) {
  writeTo(path_, "{\"isEnabled\": tru");
  EXPECT_EQ(defaults_.boolean("isEnabled"), std::nullopt);
  EXPECT_TRUE(log_.entries.empty());
  defaults_.setBoolean("isEnabled", true);
  defaults_.setBoolean("isEnabled", false);
  EXPECT_EQ(contentOf(path_ + ".unreadable"), "{\"isEnabled\": tru");
  EXPECT_EQ(contentOf(path_), "{\n  \"isEnabled\": false\n}\n");
  ASSERT_EQ(log_.entries.size(), 1U);
  EXPECT_EQ(log_.entries.front(),
            "Zephlin: " + path_ + " holds no JSON object; it is now " + path_ + ".unreadable");
}

TEST_F(JsonUserDefaultsTest, WhatWasMovedAsideBeforeIsNeverOverwritten) {
  const std::string nested = std::string(100000, '[') + std::string(100000, ']');
  const std::vector<std::string> contents = {"",
                                             "[]",
                                             std::string("{}\0", 3),
                                             "{\"a\":1} x",
                                             "{\"a\":\"\xff\"}",
                                             R"({"a":)" + nested + "}"};
  for (const std::string& content : contents) {
    writeTo(path_, content);
    defaults_.setBoolean("key", true);
    EXPECT_EQ(defaults_.boolean("key"), true);
  }
  EXPECT_EQ(contentOf(path_ + ".unreadable"), contents[0]);
  for (std::size_t index = 1; index < contents.size(); ++index) {
    EXPECT_EQ(contentOf(path_ + ".unreadable." + std::to_string(index + 1)), contents[index]);
  }
}

TEST_F(JsonUserDefaultsTest, ANumberThatIsNotFiniteSpoilsNothing) {
  defaults_.setBoolean("key", true);
  defaults_.setDouble("number", std::numeric_limits<double>::quiet_NaN());
  EXPECT_EQ(defaults_.boolean("key"), true);
  EXPECT_EQ(contentOf(path_), "{\n  \"key\": true,\n  \"number\": null\n}\n");
}

}  // namespace
}  // namespace zephlin
