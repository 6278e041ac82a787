#include <gtest/gtest.h>

#include "KeyboardService/Service/Evdev/QueueOverflow.h"
#include "Tests/Unit/KeyboardService/Service/Evdev/KeyEvents.h"

namespace zephlin {
namespace {

constexpr InputEvent dropped{EV_SYN, SYN_DROPPED, 0};

QueueOverflow::Keys keys(std::initializer_list<std::uint16_t> codes) {
  QueueOverflow::Keys keys;
  for (const std::uint16_t code : codes) {
    keys.set(code);
  }
  return keys;
}

TEST(QueueOverflow, EverythingCountsUntilThen) {
  QueueOverflow overflow;
  for (const InputEvent& event : {key(KEY_A, KeyPressed), endOfFrame, dropped}) {
    EXPECT_TRUE(overflow.counts(event));
    EXPECT_FALSE(overflow.isOver());
  }
}

TEST(QueueOverflow, TheRestOfTheLostFrameDoesNotCount) {
  QueueOverflow overflow;
  EXPECT_TRUE(overflow.counts(dropped));
  EXPECT_FALSE(overflow.counts(key(KEY_B, KeyPressed)));
  EXPECT_FALSE(overflow.isOver());
  EXPECT_FALSE(overflow.counts(endOfFrame));
  EXPECT_TRUE(overflow.isOver());
  EXPECT_TRUE(overflow.counts(key(KEY_C, KeyPressed)));
  EXPECT_FALSE(overflow.isOver());
}

TEST(QueueOverflow, TheDifferencesLeadToTheKeysThatAreHeldNow) {
  QueueOverflow overflow;
  for (const InputEvent& event :
       {key(KEY_A, KeyPressed), key(KEY_B, KeyPressed), key(KEY_B, KeyRepeated), endOfFrame,
        dropped, key(KEY_Z, KeyPressed), endOfFrame}) {
    static_cast<void>(overflow.counts(event));
  }
  EXPECT_EQ(overflow.differences(keys({KEY_B, KEY_C})),
            (std::vector{key(KEY_A, KeyReleased), key(KEY_C, KeyPressed), endOfFrame}));
  EXPECT_EQ(overflow.differences(keys({KEY_B, KEY_C})), std::vector{endOfFrame});
}

}  // namespace
}  // namespace zephlin
