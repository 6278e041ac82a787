#include <gtest/gtest.h>

#include "KeyboardService/Protocol/CapsLockDelay.h"
#include "KeyboardService/Service/KeyboardBus.h"

namespace zephlin {
namespace {

using namespace std::chrono_literals;

std::optional<std::chrono::milliseconds> delayOf(std::int64_t value) {
  return capsLockDelay({{"Another", 3}, {"CapsLockDelayOverride", value}});
}

TEST(CapsLockDelay, ZeroIsNoneAtAll) {
  EXPECT_EQ(delayOf(0), 0ms);
}

TEST(CapsLockDelay, AnotherPositiveOneIsATimeToHoldTheKey) {
  EXPECT_EQ(delayOf(1), 1ms);
  EXPECT_EQ(delayOf(74), 74ms);
  EXPECT_EQ(delayOf(76), 76ms);
  EXPECT_EQ(delayOf(60'000), 60'000ms);
}

TEST(CapsLockDelay, TheSystemsOwnBehaviourIsLeftAlone) {
  EXPECT_EQ(capsLockDelay({}), std::nullopt);
  EXPECT_EQ(capsLockDelay({{"Another", 0}}), std::nullopt);
  EXPECT_EQ(delayOf(75), std::nullopt);
  EXPECT_EQ(delayOf(-1), std::nullopt);
  EXPECT_EQ(delayOf(INT64_MIN), std::nullopt);
}

TEST(CapsLockDelay, ALongerOneIsRefused) {
  EXPECT_THROW(delayOf(60'001), BusError);
  EXPECT_THROW(delayOf(INT64_MAX), BusError);
}

}  // namespace
}  // namespace zephlin
