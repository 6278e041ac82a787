#include <gtest/gtest.h>

#include <random>

#include "Tests/Unit/KeyboardService/Service/Evdev/RewriterHistory.h"

namespace zephlin {
namespace {

class RandomHistories : public testing::TestWithParam<unsigned> {};

TEST_P(RandomHistories, KeepWhatTheRewriterPromises) {
  std::mt19937 random(GetParam());
  for (int count = 0; count < 2000; ++count) {
    std::vector<std::uint8_t> bytes(random() % 200);
    for (std::uint8_t& each : bytes) {
      each = static_cast<std::uint8_t>(random());
    }
    ASSERT_NO_THROW(checkHistory(bytes)) << "seed " << GetParam() << ", history " << count;
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomHistories, testing::Range(1U, 9U));

}  // namespace
}  // namespace zephlin
