#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "Base/FileDescriptor.h"
#include "Platform/Keyboard.h"
#include "Platform/Observation.h"

struct libevdev;

namespace zephlin {

/// A type and a code of linux/input-event-codes.h.
struct EventKind {
  unsigned type;
  unsigned code;
};

/// A value that an event device has reported, and when, by the kernel's monotonic clock.
struct EventValue {
  int value = 0;
  EventTime time{};
  bool operator==(const EventValue&) const = default;
};

/// One of the kernel's event devices, open for one kind of event. The kernel is asked to send no
/// other (EVIOCSMASK, since Linux 4.4; older ones send all, and the others are dropped).
class EventDevice {
 public:
  /// Throws std::system_error if the device cannot be opened or has no such event.
  EventDevice(const std::string& path, EventKind kind);

  [[nodiscard]] int descriptor() const { return descriptor_.get(); }

  /// The values that have arrived, without a key's repetitions. Does not wait. Throws
  /// std::system_error when the device has gone.
  std::vector<EventValue> takeValues();

 private:
  struct Deleter {
    void operator()(libevdev* device) const;
  };

  EventKind kind_;
  FileDescriptor descriptor_;
  std::unique_ptr<libevdev, Deleter> device_;
};

/// Delivers the values of one kind of event from every keyboard whose event device the user may
/// read, including keyboards that appear later. If none can be read at first: EACCES if a
/// permission was missing, otherwise ENOENT. Main thread.
std::variant<std::unique_ptr<Observation>, std::int32_t> openEventDevices(
    EventKind kind, std::function<void(const EventValue&)> callback);

}  // namespace zephlin
