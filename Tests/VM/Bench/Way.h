#pragma once

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "Tests/VM/Bench/KeyReader.h"

namespace zephlin {

/// A way for keys from a keyboard to programs.
struct Way {
  enum class CapsLock { Ordinary, Instant, AnotherKey };

  const char* name;
  bool keyboardHasLeds;
  KeyReader::Kind readFrom;
  CapsLock capsLock;
  /// Shell commands. `start` finds the keyboard's device in $KEYBOARD. It returns when its programs
  /// are at work, or on their way to it.
  const char* prepare;
  const char* start;
  std::vector<std::string> programs;
};

/// As installed: the first who asks the service starts it.
constexpr const char* listenForService =
    "rm -f /run/zephlin/hidd.sock; systemd-socket-activate -l /run/zephlin/hidd.sock zephlin-hidd "
    "& "
    "until [ -S /run/zephlin/hidd.sock ]; do sleep 0.1; done";
constexpr const char* setDelay = R"(hidutil property --matching '{"Product":"Measured Keyboard"}' )"
                                 R"(--set '{"CapsLockDelayOverride":0}')";

/// Throws std::runtime_error if no way has that name.
inline const Way& wayNamed(std::string_view name) {
  using enum KeyReader::Kind;
  using enum Way::CapsLock;
  static const std::vector<Way> ways = {
      {"alone", true, Keyboard, Ordinary, ":", ":", {}},
      {"watched", true, Keyboard, Instant, listenForService, setDelay, {"zephlin-hidd"}},
      {"grabbed", false, Clone, Instant, listenForService, setDelay, {"zephlin-hidd"}},
      {"floor", true, Clone, Ordinary, ":", "GrabbingFloor $KEYBOARD &", {"GrabbingFloor"}},
      // With the plugin for Caps Lock that Debian has, through which ordinary keys pass, and the
      // priority that its own service gives it.
      {"interception-tools",
       true,
       Clone,
       AnotherKey,
       ":",
       "nice -n -20 interception -g $KEYBOARD | nice -n -20 caps2esc | "
       "nice -n -20 uinput -d $KEYBOARD &",
       {"interception", "caps2esc", "uinput"}},
      {"keyd",
       true,
       Clone,
       Ordinary,
       "mkdir -p /etc/keyd; printf '[ids]\\n*\\n[main]\\ncapslock = capslock\\n' "
       ">/etc/keyd/default.conf",
       "keyd &",
       {"keyd"}},
  };
  for (const Way& way : ways) {
    if (way.name == name) {
      return way;
    }
  }
  throw std::runtime_error("no such way");
}

}  // namespace zephlin
