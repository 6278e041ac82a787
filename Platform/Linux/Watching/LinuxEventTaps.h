#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "Platform/Keyboard.h"
#include "Platform/Linux/Watching/WindowSystem.h"

namespace zephlin {

class X11KeyboardState;

/// Changes of modifiers. Under X11 they come from the X server's keyboard
/// state, with Control as the command key. Under Wayland only Caps Lock is known, from the
/// keyboards' LEDs, which the compositor sets: changes only if the user may read the event devices,
/// the first one preceded by the state before it; the current state in any case.
class LinuxEventTaps final : public EventTaps {
 public:
  static constexpr const char* systemLedFolder = "/sys/class/leds";

  /// `holdsInputBack` returns whether a menu of this process is open or an alert is modal.
  LinuxEventTaps(WindowSystem desktop, std::function<bool()> holdsInputBack,
                 std::string ledFolder = systemLedFolder);
  LinuxEventTaps(const LinuxEventTaps&) = delete;
  LinuxEventTaps& operator=(const LinuxEventTaps&) = delete;
  ~LinuxEventTaps() override;

  std::unique_ptr<Observation> listenToFlagsChanged(
      std::function<void(ModifierFlags flags)> callback) override;
  /// No flags if they cannot be read.
  ModifierFlags currentModifierFlags() override;

 private:
  WindowSystem desktop_;
  std::function<bool()> holdsInputBack_;
  std::string ledFolder_;
  /// Kept between readings, which may come every few milliseconds.
  std::unique_ptr<X11KeyboardState> x11State_;
};

}  // namespace zephlin
