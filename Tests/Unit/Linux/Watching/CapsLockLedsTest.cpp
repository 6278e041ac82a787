#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "Platform/Linux/Watching/LinuxKeyboard.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace zephlin {
namespace {

class CapsLockLeds : public testing::Test {
 protected:
  void setLed(const std::string& name, const std::string& brightness) {
    std::filesystem::create_directories(folder_.path() / name);
    std::ofstream(folder_.path() / name / "brightness") << brightness << "\n";
  }
  static ModifierFlags flags(const std::string& folder) {
    LinuxEventTaps taps(
        WindowSystem::Wayland, [] { return false; }, folder);
    return taps.currentModifierFlags();
  }

  test::TemporaryDirectory folder_;
};

TEST_F(CapsLockLeds, AreOnIfOneKeyboardsIsOn) {
  setLed("input3::capslock", "0");
  setLed("input7::capslock", "1");
  EXPECT_EQ(flags(folder_.path()), modifierCapsLock);
}

TEST_F(CapsLockLeds, AreOnWithAnyBrightness) {
  setLed("input3::capslock", "255");
  EXPECT_EQ(flags(folder_.path()), modifierCapsLock);
}

TEST_F(CapsLockLeds, AreOffIfAllAreOff) {
  setLed("input3::capslock", "0");
  setLed("input7::capslock", "0");
  EXPECT_EQ(flags(folder_.path()), 0U);
}

TEST_F(CapsLockLeds, AreNotOtherLeds) {
  setLed("input3::numlock", "1");
  setLed("phy0-led", "1");
  EXPECT_EQ(flags(folder_.path()), 0U);
}

TEST_F(CapsLockLeds, AreOffIfTheyCannotBeRead) {
  std::filesystem::create_directories(folder_.path() / "input3::capslock");
  setLed("input4::capslock", "bright");
  EXPECT_EQ(flags(folder_.path()), 0U);
  EXPECT_EQ(flags(folder_.file("nowhere")), 0U);
}

TEST_F(CapsLockLeds, AreReadEachTime) {
  LinuxEventTaps taps(
      WindowSystem::Wayland, [] { return false; }, folder_.path());
  setLed("input3::capslock", "0");
  EXPECT_EQ(taps.currentModifierFlags(), 0U);
  setLed("input3::capslock", "1");
  EXPECT_EQ(taps.currentModifierFlags(), modifierCapsLock);
}

}  // namespace
}  // namespace zephlin
