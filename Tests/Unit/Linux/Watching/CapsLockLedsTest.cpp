#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "Platform/Linux/Watching/CapsLockLeds.h"
#include "Platform/Linux/Watching/LinuxEventTaps.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace zephlin {
namespace {

class CapsLockLeds : public testing::Test {
 protected:
  void setLed(const std::string& name, const std::string& brightness) {
    std::filesystem::create_directories(folder_.path() / name);
    std::ofstream(folder_.path() / name / "brightness") << brightness << "\n";
  }

  test::TemporaryDirectory folder_;
};

TEST_F(CapsLockLeds, AreOnWhereOneKeyboardsIsOn) {
  setLed("input3::capslock", "0");
  setLed("input7::capslock", "1");
  EXPECT_TRUE(isAnyCapsLockLedOn(folder_.path()));
}

TEST_F(CapsLockLeds, AreOnWithAnyBrightness) {
  setLed("input3::capslock", "255");
  EXPECT_TRUE(isAnyCapsLockLedOn(folder_.path()));
}

TEST_F(CapsLockLeds, AreOffWhereAllAreOff) {
  setLed("input3::capslock", "0");
  setLed("input7::capslock", "0");
  EXPECT_FALSE(isAnyCapsLockLedOn(folder_.path()));
}

TEST_F(CapsLockLeds, AreNotOtherLeds) {
  setLed("input3::numlock", "1");
  setLed("phy0-led", "1");
  EXPECT_FALSE(isAnyCapsLockLedOn(folder_.path()));
}

TEST_F(CapsLockLeds, AreOffWhereTheyCannotBeRead) {
  std::filesystem::create_directories(folder_.path() / "input3::capslock");
  setLed("input4::capslock", "bright");
  EXPECT_FALSE(isAnyCapsLockLedOn(folder_.path()));
  EXPECT_FALSE(isAnyCapsLockLedOn(folder_.file("nowhere")));
}

TEST_F(CapsLockLeds, AreThePresentStateUnderWayland) {
  LinuxEventTaps taps(
      WindowSystem::Wayland, [] { return false; }, folder_.path());
  setLed("input3::capslock", "0");
  EXPECT_EQ(taps.currentModifierFlags(), 0U);
  setLed("input3::capslock", "1");
  EXPECT_EQ(taps.currentModifierFlags(), modifierCapsLock);
}

}  // namespace
}  // namespace zephlin
