#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <variant>

#include "KeyboardService/Protocol/Transport.h"
#include "Platform/HidDevices.h"
#include "Platform/Linux/Watching/WindowSystem.h"

namespace zephlin {

/// HID devices of every kind that appear are told by udev, and keyboards, of which not all are HID
/// devices, by the keyboard service too. An observation needs neither: it waits for both, at no
/// cost while nothing happens. The service's properties end with it, so a service that starts while
/// devices are observed counts as devices that appear.
///
/// The only input known is the Caps Lock key of keyboards. Codes of failures are errno's: ENOTSUP
/// for any other input, those of `openX11CapsLockKey` under X11, and those of `openEventDevices`
/// elsewhere.
class LinuxHidDevices final : public HidDevices {
 public:
  /// `holdsInputBack` tells whether a menu of this process is open or an alert is modal.
  LinuxHidDevices(WindowSystem desktop, std::function<bool()> holdsInputBack,
                  std::string socketPath = std::string(defaultSocketPath));

  std::unique_ptr<Observation> observeAppeared(const std::string& serviceClass,
                                               std::function<void()> callback) override;
  std::variant<std::unique_ptr<Observation>, std::int32_t> openInput(
      const HidInputMatching& matching, std::function<void(std::int64_t value)> callback) override;

 private:
  WindowSystem desktop_;
  std::function<bool()> holdsInputBack_;
  std::string socketPath_;
};

}  // namespace zephlin
