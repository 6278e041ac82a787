#pragma once

#include <fcntl.h>
#include <linux/kd.h>
#include <sys/ioctl.h>
#include <unistd.h>
#include <xkbcommon/xkbcommon.h>

#include <array>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <ctime>

namespace zephlin {

/// Between the kernel's codes of keys and XKB's.
constexpr xkb_keycode_t evdevOffset = 8;

/// Prints a line with the time before it.
[[gnu::format(printf, 1, 2)]] inline void print(const char* format, ...) {
  timespec now{};
  ::clock_gettime(CLOCK_MONOTONIC, &now);
  std::printf("%ld.%06ld ", static_cast<long>(now.tv_sec), now.tv_nsec / 1000);
  va_list arguments;
  va_start(arguments, format);
  std::vprintf(format, arguments);
  va_end(arguments);
  std::printf("\n");
  std::fflush(stdout);
}

/// The console has a lock and LEDs of its own, which a compositor switches off.
inline void silenceConsole() {
  const int console = ::open("/dev/tty0", O_RDWR | O_CLOEXEC);
  if (::ioctl(console, KDSKBMODE, K_OFF) != 0) {
    print("the console is not silent");
  }
  ::close(console);
}

/// The state of XKB that all keyboards share, as in a compositor. It lasts as long as the program.
class Seat {
 public:
  explicit Seat(const char* options) {
    xkb_rule_names names{};
    names.rules = "evdev";
    names.model = "pc105";
    names.layout = "us";
    names.options = options;
    state_ = xkb_state_new(xkb_keymap_new_from_names(xkb_context_new(XKB_CONTEXT_NO_FLAGS), &names,
                                                     XKB_KEYMAP_COMPILE_NO_FLAGS));
  }

  void key(std::uint16_t code, bool isDown) {
    const xkb_keycode_t keycode = code + evdevOffset;
    std::array<char, 16> text{};
    // As clients do: the text of a press is that before the press changes anything.
    xkb_state_key_get_utf8(state_, keycode, text.data(), text.size());
    xkb_state_update_key(state_, keycode, isDown ? XKB_KEY_DOWN : XKB_KEY_UP);
    if (isDown && text[0] > ' ') {
      print("text %s", text.data());
    }
  }

  [[nodiscard]] bool isLocked() const {
    return xkb_state_led_name_is_active(state_, XKB_LED_NAME_CAPS) > 0;
  }

 private:
  xkb_state* state_;
};

}  // namespace zephlin
