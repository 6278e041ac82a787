#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <variant>

#include "KeyboardService/Protocol/Transport.h"
#include "Platform/Keyboard.h"
#include "Platform/Linux/Watching/WindowSystem.h"

namespace zephlin {

/// udev reports HID devices of every kind that appear; the keyboard service also reports keyboards
/// that are not HID devices. Neither needs to run when an observation begins; it waits for both, at
/// no cost while nothing happens. A keyboard service that starts during an observation counts as an
/// appearing device, because properties do not outlive the service.
///
/// Error codes are errno's: those of `openX11CapsLockKey` under X11, and those of
/// `openEventDevices` elsewhere.
class LinuxHidDevices final : public HidDevices {
 public:
  /// `holdsInputBack` returns whether a menu of this process is open or an alert is modal.
  LinuxHidDevices(WindowSystem desktop, std::function<bool()> holdsInputBack,
                  std::string socketPath = std::string(defaultSocketPath));

  std::unique_ptr<Observation> observeDeviceAppeared(std::function<void()> callback) override;
  std::variant<std::unique_ptr<Observation>, std::int32_t> openCapsLockKey(
      std::function<void(bool isDown)> callback) override;

 private:
  WindowSystem desktop_;
  std::function<bool()> holdsInputBack_;
  std::string socketPath_;
};

}  // namespace zephlin
