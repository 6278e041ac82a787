#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <variant>

namespace zephlin {

/// Something that is observed. Destroying it ends the calls, even from within one.
class Observation {
 public:
  virtual ~Observation() = default;
};

/// Which devices are opened and which of their values are delivered (HID Usage Tables).
struct HidInputMatching {
  int deviceUsagePage = 0;
  int deviceUsage = 0;
  int usagePage = 0;
  int usage = 0;
};

/// Input devices. Main thread; so are the callbacks.
class HidDevices {
 public:
  virtual ~HidDevices() = default;

  /// Calls back each time when devices of the service class have appeared; those that are there
  /// already do not count. Null where that cannot be observed.
  virtual std::unique_ptr<Observation> observeAppeared(const std::string& serviceClass,
                                                       std::function<void()> callback) = 0;

  /// Delivers the integer values of the matching inputs: for a key, non-zero when it goes down and
  /// zero when it comes up. Nothing is delivered while a menu of this process is open or an alert
  /// is modal; a menu that another process shows, as a panel does on Linux, holds nothing back. On
  /// failure, the platform's code.
  virtual std::variant<std::unique_ptr<Observation>, std::int32_t> openInput(
      const HidInputMatching& matching, std::function<void(std::int64_t value)> callback) = 0;
};

}  // namespace zephlin
