#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

#include "Tests/Unit/ZephlinCore/FakeRunner.h"
#include "ZephlinCore/CapsLockEngine.h"

namespace zephlin {
namespace {

using namespace std::string_literals;
using EngineError = CapsLockEngine::EngineError;
using Status = CapsLockEngine::Status;
using test::FakeRunner;

class CapsLockEngineTest : public testing::Test {
 protected:
  void SetUp() override { FakeRunner::shared() = {}; }

  void answer(const std::string& output, std::int32_t status = 0) {
    FakeRunner::shared().results.push_back({status, false, output});
  }

  const std::vector<FakeRunner::Call>& calls() { return FakeRunner::shared().calls; }

  /// What an operation that must fail throws.
  EngineError errorOf(void (CapsLockEngine::*operation)() const) {
    try {
      (engine_.*operation)();
    } catch (const EngineError& error) {
      return error;
    }
    throw std::logic_error("no error");
  }

  const CapsLockEngine engine_{"/usr/bin/hidutil"};
};

TEST_F(CapsLockEngineTest, EachOperationPassesFiveArgumentsInOrder) {
  for (int run = 0; run < 3; ++run) {
    answer("what a set prints is discarded\n");
  }
  engine_.applyInstant();
  engine_.restoreDefault();
  static_cast<void>(engine_.status());
  ASSERT_EQ(calls().size(), 3U);
  const std::vector<std::pair<std::string, std::string>> expected = {
      {"--set", R"({"CapsLockDelayOverride":0})"},
      {"--set", R"({"CapsLockDelayOverride":-1})"},
      {"--get", "CapsLockDelayOverride"},
  };
  for (std::size_t run = 0; run < expected.size(); ++run) {
    const auto& [option, value] = expected[run];
    EXPECT_EQ(calls()[run].executable, "/usr/bin/hidutil");
    EXPECT_EQ(
        calls()[run].arguments,
        (std::vector<std::string>{"property", "--matching",
                                  R"({"PrimaryUsagePage":1,"PrimaryUsage":6})", option, value}));
    EXPECT_EQ(calls()[run].timeLimitSeconds, 10.0);
  }
}

TEST_F(CapsLockEngineTest, TheToolAtItsPathIsRun) {
  const CapsLockEngine engine("/elsewhere/tool");
  answer("");
  answer("");
  engine.applyInstant();
  static_cast<void>(engine.status());
  EXPECT_EQ(calls()[0].executable, "/elsewhere/tool");
  EXPECT_EQ(calls()[1].executable, "/elsewhere/tool");
}

TEST_F(CapsLockEngineTest, EveryValueIsWrittenInDecimal) {
  answer("");
  answer("");
  engine_.setOverride(std::numeric_limits<std::int64_t>::min());
  engine_.setOverride(1000000);
  EXPECT_EQ(calls()[0].arguments[4], R"({"CapsLockDelayOverride":-9223372036854775808})");
  EXPECT_EQ(calls()[1].arguments[4], R"({"CapsLockDelayOverride":1000000})");
}

TEST_F(CapsLockEngineTest, EachRowFallsIntoExactlyOneCount) {
  struct Case {
    const char* listing;
    Status status;
  };
  for (const auto& [listing, status] : {
           Case{"", {0, 0, 0}},
           Case{"RegistryID   Key   Value\n", {0, 0, 0}},
           Case{"a k 0\nb k (null)\n", {1, 1, 0}},
           Case{"a k 0\nb k 75\nc k -1\nd k 10\ne k 1000\n", {1, 2, 2}},
           Case{"a k 74\nb k 76\n", {0, 0, 2}},
           Case{"a k -2\nb k -75\nc k -9223372036854775808\n", {0, 3, 0}},
           Case{"a k -0\n", {1, 0, 0}},
           // A service that is listed twice counts twice.
           Case{"a k 0\na k 0\n", {2, 0, 0}},
           Case{"a k 0\n\xFF\n", {0, 0, 0}},
       }) {
    answer(listing);
    EXPECT_EQ(engine_.status(), status) << listing;
  }
}

TEST_F(CapsLockEngineTest, AStatusIsInstantPartialOrNeither) {
  struct Case {
    Status status;
    bool isInstant;
    bool isPartial;
    std::int64_t total;
  };
  for (const Case& each : {
           Case{{0, 0, 0}, false, false, 0},
           Case{{2, 0, 0}, true, false, 2},
           Case{{1, 1, 0}, false, true, 2},
           Case{{1, 0, 1}, false, true, 2},
           Case{{1, 2, 2}, false, true, 5},
           Case{{0, 3, 2}, false, false, 5},
       }) {
    EXPECT_EQ(each.status.isInstant(), each.isInstant) << each.total;
    EXPECT_EQ(each.status.isPartial(), each.isPartial) << each.total;
    EXPECT_EQ(each.status.totalServices(), each.total);
  }
}

TEST_F(CapsLockEngineTest, AFailureCarriesTheStatusAndTheWholeText) {
  answer("X\n", 3);
  const EngineError error = errorOf(&CapsLockEngine::applyInstant);
  EXPECT_EQ(error.errorDescription(), "hidutil exited with status 3: X\n");
  EXPECT_STREQ(error.what(), "hidutil exited with status 3: X\n");
  EXPECT_EQ(localizedDescription(error), error.errorDescription());
  const auto& failed = std::get<EngineError::HidutilFailed>(error.reason());
  EXPECT_EQ(failed.exitStatus, 3);
  EXPECT_EQ(failed.output, "X\n");
}

TEST_F(CapsLockEngineTest, ADescriptionKeepsWhatFollowsANul) {
  answer(std::string("a\0b", 3), 1);
  EXPECT_EQ(localizedDescription(errorOf(&CapsLockEngine::applyInstant)),
            "hidutil exited with status 1: " + std::string("a\0b", 3));
}

TEST_F(CapsLockEngineTest, ATimeoutWinsOverTheStatusAndDropsTheOutput) {
  for (const std::int32_t status : {0, 3, 9}) {
    FakeRunner::shared().results.push_back({status, true, "a k 0\n"});
    const EngineError error = errorOf(&CapsLockEngine::applyInstant);
    EXPECT_TRUE(std::holds_alternative<EngineError::TimedOut>(error.reason()));
    EXPECT_EQ(error.errorDescription(), "hidutil did not finish within 10 seconds");
  }
  FakeRunner::shared().results.push_back({0, true, "a k 0\n"});
  EXPECT_THROW(static_cast<void>(engine_.status()), EngineError);
}

TEST_F(CapsLockEngineTest, AFailureHasNoTextIfThatIsNotUtf8OrTooLong) {
  for (const std::optional<std::string>& output : {std::optional("\xC3\x28"s), {}}) {
    FakeRunner::shared().results.push_back({1, false, output});
    EXPECT_EQ(errorOf(&CapsLockEngine::restoreDefault).errorDescription(),
              "hidutil exited with status 1: ");
  }
}

TEST_F(CapsLockEngineTest, AListingThatIsTooLongIsAnError) {
  FakeRunner::shared().results.push_back({0, false, std::nullopt});
  try {
    static_cast<void>(engine_.status());
    FAIL() << "no error";
  } catch (const std::system_error& error) {
    EXPECT_EQ(localizedDescription(error), "hidutil printed more than 256 MiB: Message too long");
  }
}

TEST_F(CapsLockEngineTest, HowMuchASuccessfulSetPrintsDoesNotMatter) {
  FakeRunner::shared().results.push_back({0, false, std::nullopt});
  EXPECT_NO_THROW(engine_.applyInstant());
}

TEST(CapsLockEngineStatus, ATotalThatOverflowsAbortsTheProcess) {
  const Status status{std::numeric_limits<std::int64_t>::max(), 0, 1};
  EXPECT_DEATH(static_cast<void>(status.totalServices()), "Zephlin: fatal: a count overflowed");
  EXPECT_EQ((Status{std::numeric_limits<std::int64_t>::max() - 1, 0, 1}).totalServices(),
            std::numeric_limits<std::int64_t>::max());
  EXPECT_DEATH(
      static_cast<void>((Status{std::numeric_limits<std::int64_t>::min(), -1, 0}).totalServices()),
      "Zephlin: fatal: a count overflowed");
}

}  // namespace
}  // namespace zephlin
