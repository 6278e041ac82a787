#pragma once

#include <libevdev/libevdev.h>

#include <memory>
#include <string>
#include <vector>

#include "Base/FileDescriptor.h"
#include "Platform/Linux/Watching/EventKind.h"

namespace zephlin {

/// One of the kernel's event devices, open for one kind of event. The kernel is told to hand us no
/// other (EVIOCSMASK, since Linux 4.4; older ones hand us all, which are dropped).
class EventDevice {
 public:
  /// Throws std::system_error where the device cannot be opened or has no such event.
  EventDevice(const std::string& path, EventKind kind);

  [[nodiscard]] int descriptor() const { return descriptor_.get(); }

  /// The values that have arrived, without waiting; a key's repetitions are left out. Throws
  /// std::system_error when the device has gone.
  std::vector<int> takeValues();

 private:
  struct Deleter {
    void operator()(libevdev* device) const { libevdev_free(device); }
  };

  EventKind kind_;
  FileDescriptor descriptor_;
  std::unique_ptr<libevdev, Deleter> device_;
};

}  // namespace zephlin
