#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>

#include "KeyboardService/Protocol/Transport.h"
#include "Platform/Keyboard.h"
#include "Platform/Linux/Watching/WaylandKeyboards.h"
#include "Platform/Linux/Watching/WindowSystem.h"

namespace zephlin {

class X11KeyboardState;

/// udev reports HID devices of every kind that appear; the keyboard service also reports keyboards
/// that are not HID devices. Neither needs to run when an observation begins; it waits for both, at
/// no cost while nothing happens. A keyboard service that starts during an observation counts as an
/// appearing device, because properties do not outlive the service.
///
/// Under X11 the server reports the Caps Lock key. Under Wayland the compositor does while a window
/// of ours has the focus, and needs no permission; without the focus, and where the X server does
/// not report the key, it comes from the event devices, if the user may read them. Error codes are
/// those of `openEventDevices`.
class LinuxHidDevices final : public HidDevices {
 public:
  /// `holdsInputBack` returns whether a menu of this process is open or an alert is modal.
  LinuxHidDevices(WindowSystem desktop, std::function<bool()> holdsInputBack,
                  std::string socketPath = std::string(defaultSocketPath),
                  std::function<wl_display*()> compositor = waylandDisplay);

  std::unique_ptr<Observation> observeDeviceAppeared(std::function<void()> callback) override;
  std::variant<std::unique_ptr<Observation>, std::int32_t> openCapsLockKey(
      std::function<void(const KeyEvent&)> callback) override;
  std::optional<CapsLockKeyHelp> capsLockKeyHelp() override;

 private:
  WindowSystem desktop_;
  std::function<bool()> holdsInputBack_;
  std::string socketPath_;
  std::function<wl_display*()> compositor_;
};

/// Changes of modifiers. Under X11 they come from the X server's keyboard state, with Control as
/// the command key. Elsewhere only Caps Lock is known: its changes from the compositor while a
/// window of ours has the focus, and otherwise from the keyboards' LEDs, if the user may read the
/// event devices; the current state from the LEDs in any case.
class LinuxEventTaps final : public EventTaps {
 public:
  static constexpr const char* systemLedFolder = "/sys/class/leds";

  /// `holdsInputBack` returns whether a menu of this process is open or an alert is modal.
  LinuxEventTaps(WindowSystem desktop, std::function<bool()> holdsInputBack,
                 std::string ledFolder = systemLedFolder,
                 std::function<wl_display*()> compositor = waylandDisplay);
  LinuxEventTaps(const LinuxEventTaps&) = delete;
  LinuxEventTaps& operator=(const LinuxEventTaps&) = delete;
  ~LinuxEventTaps() override;

  std::unique_ptr<Observation> listenToFlagsChanged(
      std::function<void(const FlagsEvent&)> callback) override;
  /// No flags if they cannot be read.
  ModifierFlags currentModifierFlags() override;

 private:
  WindowSystem desktop_;
  std::function<bool()> holdsInputBack_;
  std::string ledFolder_;
  std::function<wl_display*()> compositor_;
  /// Kept between readings, which may come every few milliseconds.
  std::unique_ptr<X11KeyboardState> x11State_;
};

}  // namespace zephlin
