#include <gtest/gtest.h>

#include "KeyboardService/Service/Evdev/EvdevKeyboardBus.h"
#include "KeyboardService/Service/EventLoop.h"

namespace zephlin {
namespace {

TEST(EvdevKeyboardBus, AKeyboardThatHasGoneCarriesAnything) {
  EventLoop loop;
  EvdevKeyboardBus bus(loop, std::chrono::milliseconds(5), [](const std::string&) {});
  EXPECT_NO_THROW(bus.applyProperties(BusHandle{1}, {{"CapsLockDelayOverride", 0}}));
}

}  // namespace
}  // namespace zephlin
