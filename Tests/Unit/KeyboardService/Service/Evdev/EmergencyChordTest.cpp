#include <gtest/gtest.h>

#include <array>

#include "KeyboardService/Service/Evdev/GrabbedKeyboard.h"

namespace zephlin {
namespace {

InputEvent key(std::uint16_t code, KeyValue value) {
  return {EV_KEY, code, value};
}

TEST(EmergencyChord, IsThreeKeysHeldTogetherInAnyOrder) {
  EmergencyChord chord;
  EXPECT_FALSE(chord.completes(key(KEY_ESC, KeyPressed)));
  EXPECT_FALSE(chord.completes(key(KEY_BACKSPACE, KeyPressed)));
  EXPECT_FALSE(chord.completes(key(KEY_A, KeyPressed)));
  EXPECT_FALSE(chord.completes(endOfFrame));
  EXPECT_TRUE(chord.completes(key(KEY_ENTER, KeyPressed)));
}

TEST(EmergencyChord, IsNotThreeKeysOneAfterTheOther) {
  EmergencyChord chord;
  for (const std::uint16_t code : std::array<std::uint16_t, 3>{KEY_BACKSPACE, KEY_ENTER, KEY_ESC}) {
    EXPECT_FALSE(chord.completes(key(code, KeyPressed)));
    EXPECT_FALSE(chord.completes(key(code, KeyRepeated)));
    EXPECT_FALSE(chord.completes(key(code, KeyReleased)));
  }
}

TEST(EmergencyChord, IsCompletedAgainByPressingOneOfThemAgain) {
  EmergencyChord chord;
  chord.completes(key(KEY_ENTER, KeyPressed));
  chord.completes(key(KEY_ESC, KeyPressed));
  EXPECT_TRUE(chord.completes(key(KEY_BACKSPACE, KeyPressed)));
  EXPECT_FALSE(chord.completes(key(KEY_A, KeyPressed)));
  EXPECT_FALSE(chord.completes(key(KEY_ESC, KeyReleased)));
  EXPECT_TRUE(chord.completes(key(KEY_ESC, KeyPressed)));
}

}  // namespace
}  // namespace zephlin
