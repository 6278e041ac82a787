#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "Tests/Support/DelegatingPlatform.h"

namespace zephlin::contract {

/// A desktop's platform without what depends on the machine and its user: the test presses the Caps
/// Lock key, time stands still, and the program does not run from a bundle.
class WatchedDesktop final : public test::DelegatingPlatform<Platform&>,
                             private Clock,
                             private EventTaps,
                             private HidDevices,
                             private ProcessInfo {
 public:
  explicit WatchedDesktop(Platform& desktop) : DelegatingPlatform(desktop) {}

  Clock& clock() override { return *this; }
  ProcessInfo& processInfo() override { return *this; }
  HidDevices& hidDevices() override { return *this; }
  EventTaps& eventTaps() override { return *this; }

  /// Whether the press channel may be opened.
  bool inputIsAllowed = true;

  void pressCapsLock() { capsLockMoved_({true, now_.time_since_epoch()}); }
  /// The system accepts a press, so many seconds later.
  void toggleCapsLockAfter(double seconds) {
    now_ += Seconds(seconds);
    flags_ ^= modifierCapsLock;
    touchModifiers();
  }
  /// An event that changes nothing.
  void touchModifiers() { flagsChanged_({flags_, now_.time_since_epoch()}); }

 private:
  [[nodiscard]] WallTime now() const override { return now_; }

  std::unique_ptr<Observation> listenToFlagsChanged(
      std::function<void(const FlagsEvent&)> callback) override {
    flagsChanged_ = std::move(callback);
    return std::make_unique<Observation>();
  }
  ModifierFlags currentModifierFlags() override { return flags_; }

  std::unique_ptr<Observation> observeDeviceAppeared(std::function<void()> /*callback*/) override {
    return std::make_unique<Observation>();
  }
  std::variant<std::unique_ptr<Observation>, std::int32_t> openCapsLockKey(
      std::function<void(const KeyEvent&)> callback) override {
    if (!inputIsAllowed) {
      return std::int32_t{1};
    }
    capsLockMoved_ = std::move(callback);
    return std::make_unique<Observation>();
  }

  [[nodiscard]] std::optional<std::string> environmentVariable(
      const std::string& /*name*/) const override {
    return std::nullopt;
  }
  [[nodiscard]] std::string mainBundlePath() const override { return "/usr/local/bin"; }

  WallTime now_;
  ModifierFlags flags_ = 0;
  std::function<void(const FlagsEvent&)> flagsChanged_;
  std::function<void(const KeyEvent&)> capsLockMoved_;
};

}  // namespace zephlin::contract
