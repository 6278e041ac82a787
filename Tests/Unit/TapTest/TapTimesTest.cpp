#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <variant>

#include "Platform/Simulated/SimulatedDesktop.h"
#include "Tests/Support/DelegatingPlatform.h"
#include "Zephlin/TapTestController.h"

namespace zephlin {
namespace {

/// A keyboard whose events have the times that the test gives them.
class TimedKeyboard final : public test::DelegatingPlatform<SimulatedDesktop>,
                            private HidDevices,
                            private EventTaps {
 public:
  HidDevices& hidDevices() override { return *this; }
  EventTaps& eventTaps() override { return *this; }

  std::function<void(const KeyEvent&)> key;
  std::function<void(const FlagsEvent&)> flags;

 private:
  std::unique_ptr<Observation> observeDeviceAppeared(std::function<void()> /*callback*/) override {
    return nullptr;
  }
  std::variant<std::unique_ptr<Observation>, std::int32_t> openCapsLockKey(
      std::function<void(const KeyEvent&)> callback) override {
    key = std::move(callback);
    return std::make_unique<Observation>();
  }
  std::unique_ptr<Observation> listenToFlagsChanged(
      std::function<void(const FlagsEvent&)> callback) override {
    flags = std::move(callback);
    return std::make_unique<Observation>();
  }
  ModifierFlags currentModifierFlags() override { return 0; }
};

TEST(TapTimes, TheLatencyIsTheDifferenceOfTheEventsTimesWheneverTheyAreDelivered) {
  TimedKeyboard keyboard;
  const auto controller = std::make_shared<TapTestController>(keyboard);
  controller->show();
  keyboard.flags({0, std::nullopt});
  keyboard.key({true, Seconds(100.0)});
  keyboard.key({false, Seconds(100.08)});
  keyboard.flags({modifierCapsLock, Seconds(100.0625)});
  EXPECT_EQ(controller->toggleCount(), 1);
  EXPECT_EQ(controller->lastLatencyMS(), 63);
}

}  // namespace
}  // namespace zephlin
