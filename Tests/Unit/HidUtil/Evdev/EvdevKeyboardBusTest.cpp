#include <gtest/gtest.h>

#include "HidUtil/Evdev/EvdevKeyboardBus.h"
#include "HidUtil/EventLoop.h"

namespace zephlin {
namespace {

TEST(EvdevKeyboardBus, AKeyboardThatHasGoneCarriesAnything) {
  EventLoop loop;
  EvdevKeyboardBus bus(loop, std::chrono::milliseconds(5), [](const std::string&) {});
  EXPECT_NO_THROW(bus.applyProperties(BusHandle{1}, {{"CapsLockDelayOverride", 0}}));
}

TEST(PhysicalKeyboard, ADeviceThatIsNoneIsRefusedWithTheReason) {
  const auto errorOf = [](const std::string& path) -> std::string {
    try {
      const PhysicalKeyboard keyboard(path);
      return "no error";
    } catch (const BusError& error) {
      return error.what();
    }
  };
  EXPECT_EQ(errorOf("/absent"),
            "cannot open /absent (No such file or directory); run zephlin-hidd as root or as a "
            "user in the group input");
  EXPECT_EQ(errorOf("/dev/null").find("cannot open /dev/null ("), 0U);
}

}  // namespace
}  // namespace zephlin
