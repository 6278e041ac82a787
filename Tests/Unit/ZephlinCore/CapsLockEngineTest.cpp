#include <gtest/gtest.h>

#include <limits>

#include "Tests/Unit/ZephlinCore/FakeRunner.h"
#include "ZephlinCore/CapsLockEngine.h"

namespace zephlin {
namespace {

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

  const CapsLockEngine engine_{"/usr/bin/hidutil"};
};

TEST_F(CapsLockEngineTest, SetOverridePassesFiveArgumentsInOrder) {
  answer("");
  answer("");
  engine_.setOverride(0);
  engine_.setOverride(-1);
  ASSERT_EQ(calls().size(), 2U);
  EXPECT_EQ(calls()[0].executable, "/usr/bin/hidutil");
  EXPECT_EQ(calls()[0].arguments,
            (std::vector<std::string>{"property", "--matching",
                                      R"({"PrimaryUsagePage":1,"PrimaryUsage":6})", "--set",
                                      R"({"CapsLockDelayOverride":0})"}));
  EXPECT_EQ(calls()[1].arguments[4], R"({"CapsLockDelayOverride":-1})");
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

TEST_F(CapsLockEngineTest, ApplyInstantWritesZeroAndRestoreDefaultWritesMinusOne) {
  answer("what the tool prints is discarded\n");
  answer("");
  engine_.applyInstant();
  engine_.restoreDefault();
  EXPECT_EQ(calls()[0].arguments[4], R"({"CapsLockDelayOverride":0})");
  EXPECT_EQ(calls()[1].arguments[4], R"({"CapsLockDelayOverride":-1})");
}

TEST_F(CapsLockEngineTest, EveryValueIsWrittenInDecimal) {
  answer("");
  answer("");
  engine_.setOverride(std::numeric_limits<std::int64_t>::min());
  engine_.setOverride(1000000);
  EXPECT_EQ(calls()[0].arguments[4], R"({"CapsLockDelayOverride":-9223372036854775808})");
  EXPECT_EQ(calls()[1].arguments[4], R"({"CapsLockDelayOverride":1000000})");
}

TEST_F(CapsLockEngineTest, StatusPassesFiveArgumentsInOrder) {
  answer("");
  static_cast<void>(engine_.status());
  EXPECT_EQ(calls()[0].arguments,
            (std::vector<std::string>{"property", "--matching",
                                      R"({"PrimaryUsagePage":1,"PrimaryUsage":6})", "--get",
                                      "CapsLockDelayOverride"}));
}

TEST_F(CapsLockEngineTest, OneRunMayTakeTenSeconds) {
  answer("");
  engine_.applyInstant();
  EXPECT_EQ(calls()[0].timeLimitSeconds, 10.0);
}

TEST_F(CapsLockEngineTest, AListingWithoutRowsCountsNothing) {
  for (const char* listing : {"", "RegistryID   Key   Value\n"}) {
    answer(listing);
    const Status status = engine_.status();
    EXPECT_EQ(status, (Status{0, 0, 0}));
    EXPECT_FALSE(status.isInstant());
    EXPECT_FALSE(status.isPartial());
    EXPECT_EQ(status.totalServices(), 0);
  }
}

TEST_F(CapsLockEngineTest, OneInstantAndOneUnsetServiceArePartial) {
  answer("a CapsLockDelayOverride 0\nb CapsLockDelayOverride (null)\n");
  const Status status = engine_.status();
  EXPECT_EQ(status, (Status{1, 1, 0}));
  EXPECT_TRUE(status.isPartial());
  EXPECT_FALSE(status.isInstant());
}

TEST_F(CapsLockEngineTest, EachRowFallsIntoExactlyOneCount) {
  answer("a k 0\nb k 75\nc k -1\nd k 10\ne k 1000\n");
  const Status status = engine_.status();
  EXPECT_EQ(status, (Status{1, 2, 2}));
  EXPECT_EQ(status.totalServices(), 5);
}

TEST_F(CapsLockEngineTest, TheDefaultIsSeventyFiveExactly) {
  answer("a k 74\nb k 76\n");
  EXPECT_EQ(engine_.status(), (Status{0, 0, 2}));
}

TEST_F(CapsLockEngineTest, EveryNegativeValueIsTheDefault) {
  answer("a k -2\nb k -75\nc k -9223372036854775808\n");
  EXPECT_EQ(engine_.status(), (Status{0, 3, 0}));
}

TEST_F(CapsLockEngineTest, MinusZeroIsInstant) {
  answer("a k -0\n");
  EXPECT_EQ(engine_.status(), (Status{1, 0, 0}));
}

TEST_F(CapsLockEngineTest, AServiceListedTwiceCountsTwice) {
  answer("a k 0\na k 0\n");
  const Status status = engine_.status();
  EXPECT_EQ(status, (Status{2, 0, 0}));
  EXPECT_TRUE(status.isInstant());
}

TEST_F(CapsLockEngineTest, AServiceWithAnotherDelayIsNotInstant) {
  answer("a k 0\nb k 10\n");
  const Status status = engine_.status();
  EXPECT_EQ(status, (Status{1, 0, 1}));
  EXPECT_TRUE(status.isPartial());
  EXPECT_FALSE(status.isInstant());
}

TEST_F(CapsLockEngineTest, WithoutAnInstantServiceNothingIsPartial) {
  const Status status{0, 3, 2};
  EXPECT_FALSE(status.isInstant());
  EXPECT_FALSE(status.isPartial());
}

TEST_F(CapsLockEngineTest, AFailureCarriesTheStatusAndTheWholeText) {
  answer("X\n", 3);
  try {
    engine_.applyInstant();
    FAIL() << "no error";
  } catch (const EngineError& error) {
    EXPECT_EQ(error.errorDescription(), "hidutil exited with status 3: X\n");
    EXPECT_STREQ(error.what(), "hidutil exited with status 3: X\n");
    EXPECT_EQ(localizedDescription(error), error.errorDescription());
    const auto& failed = std::get<EngineError::HidutilFailed>(error.reason());
    EXPECT_EQ(failed.exitStatus, 3);
    EXPECT_EQ(failed.output, "X\n");
  }
}

TEST_F(CapsLockEngineTest, ADescriptionKeepsWhatFollowsANul) {
  answer(std::string("a\0b", 3), 1);
  try {
    static_cast<void>(engine_.status());
    FAIL() << "no error";
  } catch (const std::exception& error) {
    EXPECT_EQ(localizedDescription(error),
              "hidutil exited with status 1: " + std::string("a\0b", 3));
  }
}

TEST_F(CapsLockEngineTest, ATimeoutWinsOverTheStatusAndDropsTheOutput) {
  for (const std::int32_t status : {0, 3, 9}) {
    FakeRunner::shared().results.push_back({status, true, "a k 0\n"});
    try {
      static_cast<void>(engine_.status());
      FAIL() << "no error";
    } catch (const EngineError& error) {
      EXPECT_TRUE(std::holds_alternative<EngineError::TimedOut>(error.reason()));
      EXPECT_EQ(error.errorDescription(), "hidutil did not finish within 10 seconds");
    }
  }
}

TEST_F(CapsLockEngineTest, OutputThatIsNotUtf8IsEmptyText) {
  answer("a k 0\n\xFF\n");
  EXPECT_EQ(engine_.status(), (Status{0, 0, 0}));
  answer("\xC3\x28", 1);
  try {
    engine_.restoreDefault();
    FAIL() << "no error";
  } catch (const EngineError& error) {
    EXPECT_EQ(error.errorDescription(), "hidutil exited with status 1: ");
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

TEST_F(CapsLockEngineTest, AFailureWhoseTextIsTooLongHasNone) {
  FakeRunner::shared().results.push_back({3, false, std::nullopt});
  try {
    engine_.applyInstant();
    FAIL() << "no error";
  } catch (const EngineError& error) {
    EXPECT_EQ(error.errorDescription(), "hidutil exited with status 3: ");
  }
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
