#include "Platform/Linux/Watching/LinuxKeyboard.h"

#include <linux/input-event-codes.h>

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QUrl>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>
#include <variant>
#include <vector>

#include "Platform/Linux/Watching/EndableCallback.h"
#include "Platform/Linux/Watching/EventDevices.h"
#include "Platform/Linux/Watching/ServiceSubscription.h"
#include "Platform/Linux/Watching/UdevMonitor.h"
#include "Platform/Linux/Watching/X11Keyboard.h"

namespace zephlin {

namespace {

class AppearedObservation final : public Observation {
 public:
  AppearedObservation(std::string socketPath, std::function<void()> callback)
      : callback_(std::move(callback)),
        service_(std::move(socketPath), [this] { callback_.call(); }),
        // A HID device is added before it has a driver; it is usable once a driver is bound to it.
        udev_("hid", "bind", [this](udev_device* /*device*/) { callback_.call(); }) {}

 private:
  EndableCallback<> callback_;
  ServiceSubscription service_;
  UdevMonitor udev_;
};

bool isOn(const std::filesystem::path& led) {
  int brightness = 0;
  return std::ifstream(led / "brightness") >> brightness && brightness > 0;
}

/// Whether a keyboard's Caps Lock LED is on, by the files "<device>::capslock/brightness" in the
/// folder of LEDs (Documentation/input/input.rst and leds/leds-class.rst of Linux). One that cannot
/// be read counts as off. Does not wait.
bool isAnyCapsLockLedOn(const std::string& ledFolder) {
  std::error_code error;
  std::filesystem::directory_iterator led(ledFolder, error);
  while (!error && led != std::filesystem::directory_iterator()) {
    if (led->path().string().ends_with("::capslock") && isOn(led->path())) {
      return true;
    }
    led.increment(error);
  }
  return false;
}

ModifierFlags flagsOfLed(bool isOn) {
  return isOn ? modifierCapsLock : 0;
}

/// One kind of event, from the compositor while one of our windows has the focus, and otherwise
/// from the event devices that the user may read. Without a compositor, from the event devices
/// alone.
template <typename Event>
class FocusedOrDevices final : public Observation {
 public:
  using Translation = std::function<std::vector<Event>(const EventValue&)>;

  FocusedOrDevices(wl_display* compositor, EventKind kind, Translation translate,
                   std::function<void(const Event&)> callback)
      : callback_(std::move(callback)),
        translate_(std::move(translate)),
        keyboards_(WaylandKeyboards::open(compositor,
                                          [this](const WaylandKeyboards::Event& reported) {
                                            if (const auto* event = std::get_if<Event>(&reported)) {
                                              callback_.call(*event);
                                            }
                                          })),
        devices_(openEventDevices(kind, [this](const EventValue& value) {
          const std::vector<Event> events = translate_(value);
          if (!keyboards_ || !keyboards_->hasFocus()) {
            callback_.callForEach(events);
          }
        })) {}

  /// Why nothing will be delivered; absent if something may be.
  [[nodiscard]] std::optional<std::int32_t> failure() const {
    const auto* const code = std::get_if<std::int32_t>(&devices_);
    return code == nullptr || keyboards_ ? std::nullopt : std::optional(*code);
  }

 private:
  EndableCallback<const Event&> callback_;
  Translation translate_;
  std::unique_ptr<WaylandKeyboards> keyboards_;
  std::variant<std::unique_ptr<Observation>, std::int32_t> devices_;
};

std::vector<KeyEvent> keyEvents(const EventValue& value) {
  return {{value.value != 0, value.time}};
}

/// Other modifiers have no LED. Each change is delivered together with the state before it, so that
/// it counts as a change, whatever was delivered last.
class LedChanges {
 public:
  explicit LedChanges(bool isOn) : flags_(flagsOfLed(isOn)) {}

  std::vector<FlagsEvent> operator()(const EventValue& value) {
    const ModifierFlags before = std::exchange(flags_, flagsOfLed(value.value != 0));
    return {{before, std::nullopt}, {flags_, value.time}};
  }

 private:
  ModifierFlags flags_;
};

}  // namespace

LinuxHidDevices::LinuxHidDevices(WindowSystem desktop, std::function<bool()> holdsInputBack,
                                 std::string socketPath, std::function<wl_display*()> compositor)
    : desktop_(desktop),
      holdsInputBack_(std::move(holdsInputBack)),
      socketPath_(std::move(socketPath)),
      compositor_(std::move(compositor)) {}

std::unique_ptr<Observation> LinuxHidDevices::observeDeviceAppeared(
    std::function<void()> callback) {
  return std::make_unique<AppearedObservation>(socketPath_, std::move(callback));
}

std::variant<std::unique_ptr<Observation>, std::int32_t> LinuxHidDevices::openCapsLockKey(
    std::function<void(const KeyEvent&)> callback) {
  const auto deliver = [isHeldBack = holdsInputBack_,
                        callback = std::move(callback)](const KeyEvent& event) {
    if (!isHeldBack()) {
      callback(event);
    }
  };
  if (desktop_ == WindowSystem::X11) {
    auto key = openX11CapsLockKey(deliver);
    if (std::holds_alternative<std::unique_ptr<Observation>>(key)) {
      return key;
    }
  }
  auto key = std::make_unique<FocusedOrDevices<KeyEvent>>(
      compositor_(), EventKind{EV_KEY, KEY_CAPSLOCK}, keyEvents, deliver);
  if (const auto code = key->failure()) {
    return *code;
  }
  return key;
}

std::optional<CapsLockKeyHelp> LinuxHidDevices::capsLockKeyHelp() {
  return CapsLockKeyHelp{
      "Your display server does not report the key. Zephlin can read it from the keyboards if you "
      "join the group “input” and log in again.",
      [] {
        const QDir program(QCoreApplication::applicationDirPath());
        QDesktopServices::openUrl(
            QUrl::fromLocalFile(QDir::cleanPath(program.filePath(ZEPHLIN_TROUBLESHOOTING))));
      }};
}

LinuxEventTaps::LinuxEventTaps(WindowSystem desktop, std::function<bool()> holdsInputBack,
                               std::string ledFolder, std::function<wl_display*()> compositor)
    : desktop_(desktop),
      holdsInputBack_(std::move(holdsInputBack)),
      ledFolder_(std::move(ledFolder)),
      compositor_(std::move(compositor)) {}

LinuxEventTaps::~LinuxEventTaps() = default;

std::unique_ptr<Observation> LinuxEventTaps::listenToFlagsChanged(
    std::function<void(const FlagsEvent&)> callback) {
  const auto deliver = [isHeldBack = holdsInputBack_,
                        callback = std::move(callback)](const FlagsEvent& event) {
    if (!event.changeTime || !isHeldBack()) {
      callback(event);
    }
  };
  if (desktop_ == WindowSystem::X11) {
    if (auto tap = listenToX11Modifiers(deliver)) {
      return tap;
    }
  }
  auto tap = std::make_unique<FocusedOrDevices<FlagsEvent>>(
      compositor_(), EventKind{EV_LED, LED_CAPSL}, LedChanges(isAnyCapsLockLedOn(ledFolder_)),
      deliver);
  return tap->failure() ? nullptr : std::move(tap);
}

ModifierFlags LinuxEventTaps::currentModifierFlags() {
  if (desktop_ == WindowSystem::Wayland) {
    return flagsOfLed(isAnyCapsLockLedOn(ledFolder_));
  }
  if (!x11State_) {
    x11State_ = X11KeyboardState::open();
  }
  return x11State_ ? x11State_->modifierFlags() : 0;
}

}  // namespace zephlin
