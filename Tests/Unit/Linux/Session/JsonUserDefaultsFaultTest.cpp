#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <chrono>
#include <csignal>
#include <random>
#include <thread>

#include "Platform/Linux/Session/JsonUserDefaults.h"
#include "Tests/Support/InNewProcess.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/TestProcess.h"
#include "Tests/Unit/Linux/Session/Files.h"
#include "Tests/Unit/Linux/Session/RecordingLog.h"

namespace zephlin {
namespace {

using test::contentOf;

constexpr const char* advice =
    "; they hold until Zephlin quits, and a later change keeps them once this is mended";

class JsonUserDefaultsFaultTest : public testing::Test {
 protected:
  test::TemporaryDirectory directory_;
  const std::string path_ = directory_.file("zephlin/defaults.json");
  test::RecordingLog log_;
  JsonUserDefaults defaults_{path_, log_};
};

void limitFileSize(rlim_t bytes) {
  ::signal(SIGXFSZ, SIG_IGN);
  const rlimit limit{bytes, RLIM_INFINITY};
  if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) {
    throw std::runtime_error("setrlimit");
  }
}

TEST_F(JsonUserDefaultsFaultTest, OnAFullDiskAValueHoldsForTheProcessAndTheFileStaysWhole) {
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
      "11:1Zephlin: settings are not kept: cannot write " + path_ + ": File too large" + advice);
  EXPECT_EQ(contentOf(path_), before);
  EXPECT_EQ(test::namesIn(directory_.file("zephlin")), std::set<std::string>{"defaults.json"});
}

TEST_F(JsonUserDefaultsFaultTest, WhatCouldNotBeStoredIsStoredWithTheNextValueThatCan) {
  EXPECT_EQ(test::inNewProcess([this] {
              limitFileSize(5);
              defaults_.setBoolean("first", true);
              limitFileSize(RLIM_INFINITY);
              defaults_.setBoolean("second", false);
              return contentOf(path_);
            }),
            "{\n  \"first\": true,\n  \"second\": false\n}\n");
}

TEST_F(JsonUserDefaultsFaultTest, EachCauseIsLoggedOnce) {
  test::writeTo(directory_.file("zephlin"), "a file where the folder should be");
  defaults_.setBoolean("key", true);
  defaults_.setBoolean("key", false);
  EXPECT_EQ(log_.entries.size(), 1U);
  std::filesystem::remove(directory_.file("zephlin"));
  std::filesystem::create_directories(path_);
  defaults_.setBoolean("key", true);
  defaults_.setBoolean("key", true);
  ASSERT_EQ(log_.entries.size(), 2U);
  EXPECT_EQ(log_.entries.back(), "Zephlin: settings are not kept: cannot replace " + path_ +
                                     ": Is a directory" + advice);
  EXPECT_EQ(defaults_.boolean("key"), true);
}

TEST_F(JsonUserDefaultsFaultTest, AFileOfManyMegabytesIsNeitherReadNorReplaced) {
  const std::string content = "{\"key\": true" + std::string(std::size_t{2} << 20U, ' ') + "}";
  test::writeTo(path_, content);
  EXPECT_EQ(defaults_.boolean("key"), std::nullopt);
  defaults_.setBoolean("other", true);
  EXPECT_EQ(defaults_.boolean("other"), true);
  EXPECT_EQ(log_.entries, std::vector<std::string>{"Zephlin: settings are not kept: cannot read " +
                                                   path_ + ": File too large" + advice});
  EXPECT_TRUE(contentOf(path_) == content);
}

TEST_F(JsonUserDefaultsFaultTest, OfTwoProcessesThatWriteAtOnceNoValueIsLost) {
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

TEST_F(JsonUserDefaultsFaultTest, HoweverOftenAWriterIsKilledTheFileIsWhole) {
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
