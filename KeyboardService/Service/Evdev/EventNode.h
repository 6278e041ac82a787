#pragma once

#include <linux/input.h>

#include <array>
#include <bitset>
#include <chrono>
#include <initializer_list>
#include <span>
#include <string>
#include <vector>

#include "Base/FileDescriptor.h"
#include "KeyboardService/Service/Evdev/InputEvent.h"

namespace zephlin {

/// The time on the clock of a node's events.
std::chrono::microseconds monotonicTime();

/// An event device in /dev/input, open and non-blocking, with times of the monotonic clock. All
/// operations throw std::system_error if the kernel refuses: with ENODEV if the device has gone or
/// the descriptor was revoked.
class EventNode {
 public:
  /// Throws RequestError if it cannot be opened, and std::system_error with ENODEV if it has gone.
  explicit EventNode(const std::string& path);

  [[nodiscard]] int descriptor() const { return descriptor_.get(); }

  /// From now on only these codes of a type come, or for EV_SYN only these types. EV_SYN itself
  /// always comes, except that a frame of which nothing is left does not.
  void letIn(std::uint16_t type, std::initializer_list<std::uint16_t> codes);

  /// Calls back with each event that has arrived. The kernel is asked once for each full buffer:
  /// one that is not full was the last.
  template <typename Function>
  void readAll(Function function) {
    for (bool isFull = true; isFull;) {
      const auto batch = read();
      isFull = batch.size() == buffer_.size();
      for (const input_event& event : batch) {
        function(InputEvent{event.type, event.code, event.value}, timeOf(event));
      }
    }
  }

  /// To the device as if it had come from there, or to its LEDs. Nobody's grab prevents this.
  void write(std::initializer_list<InputEvent> events);

  /// Writes a frame that comes back here, to be read next, unless another program has grabbed the
  /// keyboard: then only that program gets it. Programs ignore it, and it loses nobody a key, as a
  /// grab for a moment would.
  void writeProbe() { write({{EV_SYN, SYN_CONFIG, 0}, endOfFrame}); }

  /// Whether the probe has come, or the queue has overflowed, perhaps with it.
  static constexpr bool isProbe(const InputEvent& event) {
    return event.type == EV_SYN && (event.code == SYN_CONFIG || event.code == SYN_DROPPED);
  }

  /// Writes the probe and drops all that has arrived. Returns false if another program has grabbed
  /// the keyboard.
  bool hearsProbe();

  /// Returns false if another program has grabbed it.
  bool grab();
  void ungrab();

  /// Newer than any event that is still to be read. Asking for LEDs drops LED events from the
  /// queue.
  [[nodiscard]] std::bitset<KEY_CNT> heldKeys() const;
  [[nodiscard]] std::bitset<LED_CNT> leds() const;

  /// The scan codes that the keyboard translates to a key, if its driver uses a table for that.
  [[nodiscard]] std::vector<std::int32_t> scanCodes(std::uint16_t key) const;

  /// Throws if the device has gone or the descriptor was revoked.
  void requireUsable() const;

 private:
  std::span<const input_event> read();
  static std::chrono::microseconds timeOf(const input_event& event);

  FileDescriptor descriptor_;
  std::array<input_event, 64> buffer_;
};

}  // namespace zephlin
