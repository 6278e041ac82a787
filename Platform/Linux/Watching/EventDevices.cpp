#include "Platform/Linux/Watching/EventDevices.h"

#include <fcntl.h>
#include <libevdev/libevdev.h>
#include <linux/input.h>
#include <sys/ioctl.h>

#include <QSocketNotifier>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <map>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "Platform/Linux/Watching/EndableCallback.h"
#include "Platform/Linux/Watching/UdevMonitor.h"

namespace zephlin {

namespace {

constexpr int keyRepetition = 2;

FileDescriptor openForReading(const std::string& path) {
  FileDescriptor descriptor(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  if (!descriptor.isOpen()) {
    throw std::system_error(errno, std::generic_category(), path);
  }
  return descriptor;
}

void letThrough(int descriptor, unsigned type, unsigned onlyCode) {
  std::array<unsigned char, KEY_CNT / 8> codes{};
  codes[onlyCode / 8] = static_cast<unsigned char>(1U << (onlyCode % 8));
  input_mask mask{};
  mask.type = type;
  mask.codes_size = static_cast<std::uint32_t>(codes.size());
  mask.codes_ptr = reinterpret_cast<std::uintptr_t>(codes.data());
  // If it fails, takeValues() drops the others.
  ::ioctl(descriptor, EVIOCSMASK, &mask);
}

EventTime timeOf(const input_event& event) {
  return std::chrono::seconds(event.input_event_sec) +
         std::chrono::microseconds(event.input_event_usec);
}

bool isKeyboard(udev_device* device) {
  const char* value = udev_device_get_property_value(device, "ID_INPUT_KEYBOARD");
  return value != nullptr && std::string_view(value) == "1" &&
         std::string_view(udev_device_get_sysname(device)).starts_with("event");
}

class EventDevices final : public Observation {
 public:
  EventDevices(EventKind kind, std::function<void(const EventValue&)> callback)
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
  EndableCallback<const EventValue&> callback_;
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
    // A new device may reuse the node of one whose end has not been read yet.
    keyboards_.insert_or_assign(path, std::move(keyboard));
  } catch (const std::system_error& error) {
    if (error.code() == std::errc::permission_denied) {
      failure_ = EACCES;
    }
  }
}

void EventDevices::receive(const std::string& path) {
  std::vector<EventValue> values;
  try {
    values = keyboards_.at(path)->device.takeValues();
  } catch (const std::system_error&) {
    keyboards_.erase(path);
  }
  callback_.callForEach(values);
}

}  // namespace

EventDevice::EventDevice(const std::string& path, EventKind kind)
    : kind_(kind), descriptor_(openForReading(path)) {
  libevdev* device = nullptr;
  const int error = -libevdev_new_from_fd(descriptor_.get(), &device);
  device_.reset(device);
  if (error != 0 || libevdev_has_event_code(device, kind.type, kind.code) == 0) {
    throw std::system_error(error != 0 ? error : ENOENT, std::generic_category(), path);
  }
  libevdev_set_clock_id(device, CLOCK_MONOTONIC);
  // As codes of EV_SYN, the kernel takes the types of events.
  letThrough(descriptor_.get(), EV_SYN, kind.type);
  letThrough(descriptor_.get(), kind.type, kind.code);
}

void EventDevice::Deleter::operator()(libevdev* device) const {
  libevdev_free(device);
}

std::vector<EventValue> EventDevice::takeValues() {
  std::vector<EventValue> values;
  unsigned flag = LIBEVDEV_READ_FLAG_NORMAL;
  for (;;) {
    input_event event{};
    const int status = libevdev_next_event(device_.get(), flag, &event);
    if (status == -EAGAIN && flag == LIBEVDEV_READ_FLAG_NORMAL) {
      return values;
    }
    if (status < 0 && status != -EAGAIN) {
      throw std::system_error(-status, std::generic_category());
    }
    // Events were lost. Until EAGAIN, libevdev reports how the state has changed.
    flag =
        status == LIBEVDEV_READ_STATUS_SYNC ? LIBEVDEV_READ_FLAG_SYNC : LIBEVDEV_READ_FLAG_NORMAL;
    if (status >= 0 && event.type == kind_.type && event.code == kind_.code &&
        event.value != keyRepetition) {
      values.push_back({event.value, timeOf(event)});
    }
  }
}

std::variant<std::unique_ptr<Observation>, std::int32_t> openEventDevices(
    EventKind kind, std::function<void(const EventValue&)> callback) {
  auto devices = std::make_unique<EventDevices>(kind, std::move(callback));
  if (devices->isEmpty()) {
    return devices->failure();
  }
  return devices;
}

}  // namespace zephlin
