#include <gtest/gtest.h>
#include <linux/input.h>

#include <array>
#include <cstdio>

#include "KeyboardService/Service/Evdev/KeyboardNodes.h"

namespace zephlin {
namespace {

TEST(KeyboardNode, AKeyboardHasCapsLockAndLetters) {
  EXPECT_TRUE(
      hasCapsLockAndLetters("1000000000007 ff9f207ac14057ff febeffdfffefffff "
                            "fffffffffffffffe\n"));
  EXPECT_TRUE(hasCapsLockAndLetters("7fffffffffffffff"));
}

TEST(KeyboardNode, ButtonsRemoteControlsAndMiceDoNotCount) {
  for (const char* const keys :
       {"10000000000000 0\n", "70000 0 0 0 0\n",
        "3f000303ff 0 0 483ffff17aff32d bfd4444600000000 1 130ff38b17c007 ffff7bfad9415fff "
        "ffbeffdff3cfffff fffffffffffffff0 0\n",
        "", "nonsense"}) {
    EXPECT_FALSE(hasCapsLockAndLetters(keys)) << keys;
  }
}

TEST(KeyboardNode, OneLetterLessIsNoKeyboard) {
  constexpr unsigned long all = 0x7fffffffffffffff;
  for (const int key : {KEY_Q, KEY_P, KEY_A, KEY_L, KEY_Z, KEY_M, KEY_CAPSLOCK}) {
    std::array<char, 17> text{};
    std::snprintf(text.data(), text.size(), "%lx", all & ~(1UL << key));
    EXPECT_FALSE(hasCapsLockAndLetters(text.data())) << key;
  }
}

TEST(KeyboardNode, TheLedOfCapsLockIsTheSecond) {
  EXPECT_TRUE(hasCapsLockLed("7\n"));
  EXPECT_TRUE(hasCapsLockLed("2\n"));
  EXPECT_FALSE(hasCapsLockLed("1\n"));
  EXPECT_FALSE(hasCapsLockLed("0\n"));
  EXPECT_FALSE(hasCapsLockLed(""));
}

TEST(KeyboardNode, BusesHaveTheNamesThatPeopleUse) {
  EXPECT_EQ(busName(BUS_USB), "USB");
  EXPECT_EQ(busName(BUS_BLUETOOTH), "Bluetooth");
  EXPECT_EQ(busName(BUS_I8042), "PS/2");
  EXPECT_EQ(busName(0xffff), "Other");
}

}  // namespace
}  // namespace zephlin
