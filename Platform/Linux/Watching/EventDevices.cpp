#include "Platform/Linux/Watching/EventDevices.h"

#include <QSocketNotifier>
#include <cerrno>
#include <map>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "Platform/Linux/Watching/EndableCallback.h"
#include "Platform/Linux/Watching/EventDevice.h"
#include "Platform/Linux/Watching/UdevMonitor.h"

namespace zephlin {

namespace {

bool isKeyboard(udev_device* device) {
  const char* value = udev_device_get_property_value(device, "ID_INPUT_KEYBOARD");
  return value != nullptr && std::string_view(value) == "1" &&
         std::string_view(udev_device_get_sysname(device)).starts_with("event");
}

class EventDevices final : public Observation {
 public:
  EventDevices(EventKind kind, std::function<void(int value)> callback)
      : kind_(kind),
        callback_(std::move(callback)),
        monitor_("input", "add", [this](udev_device* device) { addKeyboard(device); }) {
    addPresentKeyboards();
  }

  [[nodiscard]] bool isEmpty() const { return keyboards_.empty(); }
  [[nodiscard]] int failure() const { return failure_; }

 private:
  struct Keyboard {
    Keyboard(const std::string& path, EventKind kind)
        : device(path, kind), notifier(device.descriptor(), QSocketNotifier::Read) {}

    EventDevice device;
    QSocketNotifier notifier;
  };

  void addPresentKeyboards();
  void addKeyboard(udev_device* device);
  void receive(const std::string& path);

  EventKind kind_;
  EndableCallback<int> callback_;
  UdevMonitor monitor_;
  std::map<std::string, std::unique_ptr<Keyboard>> keyboards_;
  int failure_ = ENOENT;
};

void EventDevices::addPresentKeyboards() {
  const UdevPointer<udev> context(udev_new());
  const UdevPointer<udev_enumerate> enumeration(udev_enumerate_new(context.get()));
  udev_enumerate_add_match_subsystem(enumeration.get(), "input");
  udev_enumerate_add_match_property(enumeration.get(), "ID_INPUT_KEYBOARD", "1");
  udev_enumerate_scan_devices(enumeration.get());
  for (auto* entry = udev_enumerate_get_list_entry(enumeration.get()); entry != nullptr;
       entry = udev_list_entry_get_next(entry)) {
    const UdevPointer<udev_device> device(
        udev_device_new_from_syspath(context.get(), udev_list_entry_get_name(entry)));
    if (device) {
      addKeyboard(device.get());
    }
  }
}

void EventDevices::addKeyboard(udev_device* device) {
  const char* node = udev_device_get_devnode(device);
  if (node == nullptr || !isKeyboard(device)) {
    return;
  }
  try {
    const std::string path = node;
    auto keyboard = std::make_unique<Keyboard>(path, kind_);
    QObject::connect(&keyboard->notifier, &QSocketNotifier::activated,
                     [this, path] { receive(path); });
    // A new device may take the node of one whose end has not been read yet.
    keyboards_.insert_or_assign(path, std::move(keyboard));
  } catch (const std::system_error& error) {
    if (error.code() == std::errc::permission_denied) {
      failure_ = EACCES;
    }
  }
}

void EventDevices::receive(const std::string& path) {
  std::vector<int> values;
  try {
    values = keyboards_.at(path)->device.takeValues();
  } catch (const std::system_error&) {
    keyboards_.erase(path);
  }
  callback_.callForEach(values);
}

}  // namespace

std::variant<std::unique_ptr<Observation>, std::int32_t> openEventDevices(
    EventKind kind, std::function<void(int value)> callback) {
  auto devices = std::make_unique<EventDevices>(kind, std::move(callback));
  if (devices->isEmpty()) {
    return devices->failure();
  }
  return devices;
}

}  // namespace zephlin
