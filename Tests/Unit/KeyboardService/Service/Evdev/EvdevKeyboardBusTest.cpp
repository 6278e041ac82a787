#include <gtest/gtest.h>

#include <system_error>

#include "KeyboardService/Service/Evdev/EvdevKeyboardBus.h"
#include "KeyboardService/Service/EventLoop.h"

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
    } catch (const RequestError& error) {
      return error.what();
    }
  };
  EXPECT_EQ(errorOf("/dev"), "cannot open /dev (Is a directory)");
  EXPECT_EQ(errorOf("/dev/null").find("cannot open /dev/null ("), 0U);
}

TEST(PhysicalKeyboard, ADeviceThatIsAbsentHasGone) {
  std::error_code code;
  try {
    const PhysicalKeyboard keyboard("/absent");
  } catch (const std::system_error& error) {
    code = error.code();
  }
  EXPECT_EQ(code, std::errc::no_such_device);
}

}  // namespace
}  // namespace zephlin
