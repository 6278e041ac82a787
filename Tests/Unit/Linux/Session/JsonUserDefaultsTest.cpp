#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <chrono>
#include <csignal>
#include <limits>
#include <random>
#include <thread>

#include "Platform/Linux/Session/JsonUserDefaults.h"
#include "Tests/Support/Files.h"
#include "Tests/Support/InNewProcess.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/TestProcess.h"
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

TEST_F(JsonUserDefaultsTest, ASetKeepsEverythingElseInItsPlace) {
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
            "Zephlin: " + path_ + " is not a JSON object; it is now " + path_ + ".unreadable");
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

constexpr const char* advice =
    "; they hold until Zephlin quits, and the next change saves them once this is fixed";

void limitFileSize(rlim_t bytes) {
  ::signal(SIGXFSZ, SIG_IGN);
  const rlimit limit{bytes, RLIM_INFINITY};
  if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) {
    throw std::runtime_error("setrlimit");
  }
}

TEST_F(JsonUserDefaultsTest, OnAFullDiskAValueHoldsForTheProcessAndTheFileStaysWhole) {
  defaults_.setBoolean("old", true);
  const std::string before = contentOf(path_);
  EXPECT_EQ(
      test::inNewProcess([this] {
        limitFileSize(5);
        defaults_.setBoolean("new", true);
        defaults_.setBoolean("old", false);
        return std::to_string(defaults_.boolean("new") == true) +
               std::to_string(defaults_.boolean("old") == false) + ":" +
               std::to_string(log_.entries.size()) + log_.entries.front();
      }),
      "11:1Zephlin: cannot save settings: cannot write " + path_ + ": File too large" + advice);
  EXPECT_EQ(contentOf(path_), before);
  EXPECT_EQ(test::namesIn(directory_.file("zephlin")), std::set<std::string>{"defaults.json"});
}

TEST_F(JsonUserDefaultsTest, WhatCouldNotBeStoredIsStoredWithTheNextValueThatCan) {
  EXPECT_EQ(test::inNewProcess([this] {
              limitFileSize(5);
              defaults_.setBoolean("first", true);
              limitFileSize(RLIM_INFINITY);
              defaults_.setBoolean("second", false);
              return contentOf(path_);
            }),
            "{\n  \"first\": true,\n  \"second\": false\n}\n");
}

TEST_F(JsonUserDefaultsTest, EachCauseIsLoggedOnce) {
  test::writeTo(directory_.file("zephlin"), "a file where the folder should be");
  defaults_.setBoolean("key", true);
  defaults_.setBoolean("key", false);
  EXPECT_EQ(log_.entries.size(), 1U);
  std::filesystem::remove(directory_.file("zephlin"));
  std::filesystem::create_directories(path_);
  defaults_.setBoolean("key", true);
  defaults_.setBoolean("key", true);
  ASSERT_EQ(log_.entries.size(), 2U);
  EXPECT_EQ(log_.entries.back(),
            "Zephlin: cannot save settings: cannot replace " + path_ + ": Is a directory" + advice);
  EXPECT_EQ(defaults_.boolean("key"), true);
}

TEST_F(JsonUserDefaultsTest, AFileOfManyMegabytesIsNeitherReadNorReplaced) {
  const std::string content = "{\"key\": true" + std::string(std::size_t{2} << 20U, ' ') + "}";
  test::writeTo(path_, content);
  EXPECT_EQ(defaults_.boolean("key"), std::nullopt);
  defaults_.setBoolean("other", true);
  EXPECT_EQ(defaults_.boolean("other"), true);
  EXPECT_EQ(log_.entries, std::vector<std::string>{"Zephlin: cannot save settings: cannot read " +
                                                   path_ + ": File too large" + advice});
  EXPECT_TRUE(contentOf(path_) == content);
}

TEST_F(JsonUserDefaultsTest, OfTwoProcessesThatWriteAtOnceNoValueIsLost) {
  constexpr int values = 100;
  const auto writeAll = [this](const std::string& prefix) {
    for (int index = 0; index < values; ++index) {
      defaults_.setBoolean(prefix + std::to_string(index), true);
    }
  };
  test::TestProcess first([&] { writeAll("first"); });
  test::TestProcess second([&] { writeAll("second"); });
  EXPECT_EQ(first.wait().status, 0);
  EXPECT_EQ(second.wait().status, 0);
  for (int index = 0; index < values; ++index) {
    EXPECT_EQ(defaults_.boolean("first" + std::to_string(index)), true) << index;
    EXPECT_EQ(defaults_.boolean("second" + std::to_string(index)), true) << index;
  }
}

TEST_F(JsonUserDefaultsTest, TheFileIsWholeEvenIfWritersAreKilled) {
  defaults_.setBoolean("keeper", true);
  std::minstd_rand random(20);
  for (int round = 0; round < 200; ++round) {
    test::TestProcess writer([this] {
      for (bool value = true;; value = !value) {
        defaults_.setBoolean("flip", value);
      }
    });
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 5000));
    writer.send(SIGKILL);
    EXPECT_EQ(writer.wait().status, -SIGKILL);
    ASSERT_EQ(defaults_.boolean("keeper"), true) << contentOf(path_);
  }
  defaults_.setBoolean("flip", true);
  EXPECT_TRUE(log_.entries.empty());
  EXPECT_EQ(contentOf(path_), "{\n  \"keeper\": true,\n  \"flip\": true\n}\n");
  EXPECT_EQ(test::namesIn(directory_.file("zephlin")), std::set<std::string>{"defaults.json"});
}

}  // namespace
}  // namespace zephlin
