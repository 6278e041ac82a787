#include <gtest/gtest.h>

#include <random>

#include "KeyboardService/Service/Evdev/CapsLockRewriter.h"
#include "Tests/Unit/KeyboardService/Service/Evdev/RewriterHistory.h"

namespace zephlin {
namespace {

using namespace std::chrono_literals;
using Events = CapsLockRewriter::Events;

constexpr InputEvent capsLockDown{EV_KEY, KEY_CAPSLOCK, KeyPressed};
constexpr InputEvent capsLockUp{EV_KEY, KEY_CAPSLOCK, KeyReleased};

TEST(CapsLockRewriter, AFrameKeepsItsOwnEnd) {
  CapsLockRewriter rewriter(CapsLockRule{});
  constexpr InputEvent wheel{EV_REL, REL_WHEEL_HI_RES, -120};
  constexpr InputEvent end{EV_SYN, SYN_REPORT, 1};
  EXPECT_EQ(rewriter.take(wheel, 1ms, 1ms), Events());
  EXPECT_EQ(rewriter.take(end, 1ms, 1ms), (Events{wheel, end}));
}

TEST(CapsLockRewriter, ADeadlineThatHasPassedComesBeforeTheNextEvent) {
  CapsLockRewriter rewriter(CapsLockRule{40ms, 5ms});
  rewriter.take(capsLockDown, 0ms, 0ms);
  EXPECT_EQ(rewriter.take(endOfFrame, 0ms, 0ms), Events());
  EXPECT_EQ(rewriter.take(capsLockUp, 40ms, 40ms), (Events{capsLockDown, endOfFrame}));
  EXPECT_EQ(rewriter.take(endOfFrame, 40ms, 40ms), (Events{capsLockUp, endOfFrame}));
}

TEST(CapsLockRewriter, TheDeadlineOfATapIsOneGapAfterThePress) {
  CapsLockRewriter rewriter(CapsLockRule{0ms, 7ms});
  rewriter.setLed(true);
  EXPECT_EQ(rewriter.deadline(), std::nullopt);
  rewriter.take(capsLockDown, 3ms, 3ms);
  rewriter.take(endOfFrame, 3ms, 3ms);
  EXPECT_EQ(rewriter.deadline(), 10ms);
  EXPECT_EQ(rewriter.expire(10ms - 1us), Events());
  EXPECT_EQ(rewriter.expire(10ms), (Events{capsLockUp, endOfFrame}));
  EXPECT_EQ(rewriter.deadline(), std::nullopt);
}

TEST(CapsLockRewriter, ATapThatIsReadLateHasItsWholeGap) {
  CapsLockRewriter rewriter(CapsLockRule{0ms, 5ms});
  rewriter.setLed(true);
  rewriter.take(capsLockDown, 3ms, 20ms);
  EXPECT_EQ(rewriter.take(endOfFrame, 3ms, 20ms), (Events{capsLockDown, endOfFrame}));
  rewriter.take(capsLockUp, 19ms, 20ms);
  EXPECT_EQ(rewriter.take(endOfFrame, 19ms, 20ms), Events());
  EXPECT_EQ(rewriter.deadline(), 25ms);
}

TEST(CapsLockRewriter, ATapThatWaitedHasItsWholeGap) {
  CapsLockRewriter rewriter(CapsLockRule{0ms, 5ms});
  rewriter.setLed(true);
  for (const InputEvent& event :
       {capsLockDown, endOfFrame, capsLockUp, endOfFrame, capsLockDown, endOfFrame}) {
    rewriter.take(event, 0ms, 0ms);
  }
  EXPECT_EQ(rewriter.take(capsLockUp, 6ms, 20ms),
            (Events{capsLockUp, endOfFrame, capsLockDown, endOfFrame}));
  EXPECT_EQ(rewriter.deadline(), 25ms);
}

TEST(CapsLockRewriter, AKeyThatIsReadLateWasHeldAllTheSame) {
  CapsLockRewriter rewriter(CapsLockRule{40ms, 5ms});
  rewriter.take(capsLockDown, 0ms, 30ms);
  rewriter.take(endOfFrame, 0ms, 30ms);
  EXPECT_EQ(rewriter.deadline(), 40ms);
}

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
