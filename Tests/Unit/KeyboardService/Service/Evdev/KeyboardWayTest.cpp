#include <gtest/gtest.h>

#include "KeyboardService/Service/Evdev/KeyboardWay.h"

namespace zephlin {
namespace {

using namespace std::chrono_literals;
using Way = KeyboardWay;

KeyboardNode keyboard(bool hasCapsLockLed, const char* seat) {
  KeyboardNode node;
  node.hasCapsLockLed = hasCapsLockLed;
  node.description.seat = seat;
  return node;
}

TEST(KeyboardWay, FollowsFromTheDelayTheLedAndTheSeat) {
  struct Case {
    bool hasCapsLockLed;
    const char* seat;
    std::optional<std::chrono::milliseconds> delay;
    Way way;
  };
  for (const Case& each : {
           Case{true, "seat0", std::nullopt, Way::LeftAlone},
           Case{false, "seat1", std::nullopt, Way::LeftAlone},
           Case{true, "seat0", 0ms, Way::Watched},
           Case{true, "seat1", 0ms, Way::Watched},
           Case{true, "seat0", 1ms, Way::Grabbed},
           Case{false, "seat0", 0ms, Way::Grabbed},
           Case{true, "seat1", 1ms, Way::Impossible},
           Case{false, "seat1", 0ms, Way::Impossible},
       }) {
    EXPECT_EQ(wayFor(keyboard(each.hasCapsLockLed, each.seat), each.delay), each.way)
        << each.hasCapsLockLed << each.seat << (each.delay ? each.delay->count() : -1);
  }
  EXPECT_EQ(whyImpossible(keyboard(false, "seat1")), "on seat1, which cannot have a clone");
}

}  // namespace
}  // namespace zephlin
