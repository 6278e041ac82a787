// The tap test as a person uses it.

#include <string>

#include "Tests/Desktop/Harness/EverydayTest.h"

namespace zephlin::test {
namespace {

class EverydayTaps : public EverydayTest {
 protected:
  void waitForText(const std::string& text) const {
    reader_.waitForName(app_.program().id(), text);
  }

  const Accessibility reader_{desktop().sessionBus()};
};

TEST_F(EverydayTaps, CountsThreeTaps) {
  if (desktop().fingers().isCapsLockOn()) {
    desktop().fingers().tap(Key::CapsLock);
  }
  menu_.choose("Tap Test…");
  waitForActiveWindow("Tap Test");
  for (int tap = 1; tap <= 3; ++tap) {
    desktop().fingers().tap(Key::CapsLock);
    waitForText(std::to_string(tap) + " Taps");
    waitForText(std::to_string(tap) + " Registered");
    waitForText("Every tap registered. Instant");
  }
  EXPECT_TRUE(
      reader_.nameBeginning(app_.program().id(), "Last tap registered in ").ends_with(" ms"));
  photograph("tap-test");
}

}  // namespace
}  // namespace zephlin::test
