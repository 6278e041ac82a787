#include <gtest/gtest.h>

#include <array>
#include <system_error>

#include "KeyboardService/Service/Evdev/EventNode.h"
#include "KeyboardService/Service/Evdev/GrabbedKeyboard.h"
#include "Tests/Unit/KeyboardService/Service/Evdev/KeyEvents.h"

namespace zephlin {
namespace {

TEST(EventNode, ADeviceThatIsNoneIsRefusedWithTheReason) {
  const auto errorOf = [](const std::string& path) -> std::string {
    try {
      const EventNode node(path);
      return "no error";
    } catch (const RequestError& error) {
      return error.what();
    }
  };
  EXPECT_EQ(errorOf("/dev"), "cannot open /dev (Is a directory)");
  EXPECT_EQ(errorOf("/dev/null").find("cannot open /dev/null ("), 0U);
}

TEST(EventNode, ADeviceThatIsAbsentHasGone) {
  std::error_code code;
  try {
    const EventNode node("/absent");
  } catch (const std::system_error& error) {
    code = error.code();
  }
  EXPECT_EQ(code, std::errc::no_such_device);
}

struct Step {
  std::uint16_t code;
  KeyValue value;
  bool completes;
};

TEST(EmergencyChord, IsThreeKeysHeldTogetherInAnyOrderAndPressingOneOfThemAgain) {
  EmergencyChord chord;
  EXPECT_FALSE(chord.completes(endOfFrame));
  for (const auto& [code, value, completes] : {Step{KEY_ESC, KeyPressed, false},
                                               {KEY_BACKSPACE, KeyPressed, false},
                                               {KEY_A, KeyPressed, false},
                                               {KEY_ENTER, KeyPressed, true},
                                               {KEY_A, KeyPressed, false},
                                               {KEY_ESC, KeyReleased, false},
                                               {KEY_ESC, KeyPressed, true}}) {
    EXPECT_EQ(chord.completes(key(code, value)), completes) << code;
    EXPECT_FALSE(chord.completes(endOfFrame));
  }
}

TEST(EmergencyChord, IsNotThreeKeysOneAfterTheOther) {
  EmergencyChord chord;
  for (const std::uint16_t code : std::array<std::uint16_t, 3>{KEY_BACKSPACE, KEY_ENTER, KEY_ESC}) {
    for (const KeyValue value : {KeyPressed, KeyRepeated, KeyReleased}) {
      EXPECT_FALSE(chord.completes(key(code, value)));
    }
  }
}

}  // namespace
}  // namespace zephlin
