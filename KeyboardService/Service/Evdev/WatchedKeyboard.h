#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "KeyboardService/Service/Evdev/CapsLockWatch.h"
#include "KeyboardService/Service/Evdev/HardwareRepeat.h"
#include "KeyboardService/Service/Evdev/NodeHandling.h"
#include "KeyboardService/Service/Evdev/RepeatBlocker.h"

namespace zephlin {

/// A keyboard whose Caps Lock acts at once although every key goes its usual way. Only Caps Lock
/// and its LED are seen. When it is pressed while the LED is lit, its release is written into the
/// same device, so that all programs see the key come up; the kernel then drops the real release.
/// If this process ends or stands still, the keyboard works as ever.
class WatchedKeyboard final : public NodeHandling {
 public:
  WatchedKeyboard(EventLoop& loop, const KeyboardNode& node, Report report);
  WatchedKeyboard(const WatchedKeyboard&) = delete;
  WatchedKeyboard& operator=(const WatchedKeyboard&) = delete;
  ~WatchedKeyboard() override;

  /// There is only one rule for a watched keyboard: presses count at once.
  void setRule(CapsLockRule /*rule*/) override {}

 private:
  void onOpen() override;
  void confirm() override;
  void onClose() noexcept override;
  void handleAll();

  /// Returns the time of the first scan code among what has arrived.
  std::optional<std::chrono::microseconds> readAll();
  void act();
  void followRepeats();
  void blockRepeats();

  std::string path_;
  bool repeatsInHardware_;
  CapsLockWatch watch_;
  bool isHeard_ = false;
  std::chrono::microseconds pressed_{};
  std::optional<HardwareRepeat> repeat_;
  std::optional<RepeatBlocker> blocker_;
  bool areScanCodesLetIn_ = false;
  EventSource repeatDeadline_;
  EventSource events_;
};

}  // namespace zephlin
