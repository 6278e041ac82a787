#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "KeyboardService/Service/Evdev/GrabbedKeyboard.h"
#include "KeyboardService/Service/Evdev/WatchedKeyboard.h"

namespace zephlin {
namespace {

using namespace std::chrono_literals;
using Kind = KeyboardState::Kind;

/// Handles whatever is at `path`, which is no keyboard, while its device is in /sys or not.
class KeyboardHandlingTest : public testing::TestWithParam<bool> {
 protected:
  std::unique_ptr<KeyboardHandling> handle(const std::string& path,
                                           const std::string& systemPath = "/sys") {
    KeyboardNode node;
    node.path = path;
    node.systemPath = systemPath;
    const auto report = [this](const KeyboardState& state) { states_.push_back(state); };
    if (GetParam()) {
      return std::make_unique<WatchedKeyboard>(loop_, node, report);
    }
    return std::make_unique<GrabbedKeyboard>(loop_, node, CapsLockRule{300ms, 5ms}, report, [] {});
  }

  EventLoop loop_;
  std::vector<KeyboardState> states_;
};

TEST_P(KeyboardHandlingTest, TroubleIsAStateFromTheStartAndAfterEachCheck) {
  const auto keyboard = handle("/dev");
  const KeyboardState cannot{Kind::NotInForce, "cannot open /dev (Is a directory)"};
  EXPECT_EQ(states_, std::vector{cannot});
  keyboard->setRule({300ms, 5ms});
  keyboard->check();
  EXPECT_EQ(states_, (std::vector{cannot, cannot}));
}

TEST_P(KeyboardHandlingTest, AFileThatIsNotAKeyboardIsTrouble) {
  handle("/dev/null");
  ASSERT_EQ(states_.size(), 1U);
  EXPECT_EQ(states_[0].kind, Kind::NotInForce);
  EXPECT_EQ(states_[0].text.find("cannot open /dev/null ("), 0U);
}

TEST_P(KeyboardHandlingTest, AKeyboardThatHasGoneStaysSo) {
  const auto keyboard = handle("/absent", "/absent");
  const KeyboardState gone{Kind::NotInForce, "the keyboard has gone"};
  EXPECT_EQ(states_, std::vector{gone});
  keyboard->check();
  EXPECT_EQ(states_, (std::vector{gone, gone}));
}

TEST_P(KeyboardHandlingTest, ADeviceThatIsStillThereHasNotGone) {
  handle("/absent", "/sys");
  ASSERT_EQ(states_.size(), 1U);
  EXPECT_EQ(states_[0].text, "opening a keyboard: No such device");
}

INSTANTIATE_TEST_SUITE_P(WatchedAndGrabbed, KeyboardHandlingTest, testing::Bool());

}  // namespace
}  // namespace zephlin
