#include "KeyboardService/Service/Evdev/KeyboardNodes.h"

#include <linux/input.h>
#include <sys/epoll.h>

#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

namespace zephlin {
namespace {

struct KeyRange {
  std::size_t first;
  std::size_t last;
};

/// The rows of letters, whose codes follow one another, and Caps Lock.
constexpr KeyRange needed[] = {
    {KEY_Q, KEY_P}, {KEY_A, KEY_L}, {KEY_Z, KEY_M}, {KEY_CAPSLOCK, KEY_CAPSLOCK}};

bool hasBit(std::string_view bitmap, std::size_t bit) {
  constexpr std::size_t bitsInWord = std::numeric_limits<unsigned long>::digits;
  for (std::size_t skipped = bit / bitsInWord; skipped > 0; --skipped) {
    const auto space = bitmap.rfind(' ');
    if (space == std::string_view::npos) {
      return false;
    }
    bitmap = bitmap.substr(0, space);
  }
  const std::string_view word = bitmap.substr(bitmap.rfind(' ') + 1);
  unsigned long value = 0;
  std::from_chars(word.data(), word.data() + word.size(), value, 16);
  return (value >> bit % bitsInWord & 1U) != 0;
}

template <typename Object>
Object* checked(Object* object, const char* what) {
  if (object == nullptr) {
    throw std::system_error(errno, std::generic_category(), what);
  }
  return object;
}

std::string attribute(udev_device* device, const char* name) {
  const char* const value = udev_device_get_sysattr_value(device, name);
  return value == nullptr ? "" : value;
}

unsigned identity(udev_device* device, const char* name) {
  return static_cast<unsigned>(std::strtoul(attribute(device, name).c_str(), nullptr, 16));
}

/// Nothing unless the device is the event device of a keyboard and not one of our clones.
std::optional<KeyboardNode> keyboardNode(udev_device* device) {
  const char* const path = udev_device_get_devnode(device);
  udev_device* const input =
      udev_device_get_parent_with_subsystem_devtype(device, "input", nullptr);
  if (path == nullptr || input == nullptr ||
      !std::string_view(udev_device_get_sysname(device)).starts_with("event") ||
      attribute(input, "phys").starts_with(clonePhysicalPath) ||
      !hasCapsLockAndLetters(attribute(input, "capabilities/key"))) {
    return std::nullopt;
  }
  const unsigned bus = identity(input, "id/bustype");
  KeyboardNode node{.number = udev_device_get_devnum(device),
                    .systemPath = udev_device_get_syspath(device),
                    .path = path,
                    .hasCapsLockLed = hasCapsLockLed(attribute(input, "capabilities/led")),
                    .repeatsInHardware = bus == BUS_I8042,
                    .description = {}};
  node.description.vendorID = identity(input, "id/vendor");
  node.description.productID = identity(input, "id/product");
  node.description.product = attribute(input, "name");
  node.description.transport = busName(bus);
  const char* const seat = udev_device_get_property_value(device, "ID_SEAT");
  node.description.seat = seat == nullptr ? "seat0" : seat;
  return node;
}

}  // namespace

bool hasCapsLockAndLetters(std::string_view keyBitmap) {
  for (const auto& [first, last] : needed) {
    for (std::size_t key = first; key <= last; ++key) {
      if (!hasBit(keyBitmap, key)) {
        return false;
      }
    }
  }
  return true;
}

bool hasCapsLockLed(std::string_view ledBitmap) {
  return hasBit(ledBitmap, LED_CAPSL);
}

std::string busName(unsigned bus) {
  switch (bus) {
    case BUS_USB:
      return "USB";
    case BUS_BLUETOOTH:
      return "Bluetooth";
    case BUS_I8042:
      return "PS/2";
    case BUS_I2C:
      return "I2C";
    case BUS_SPI:
      return "SPI";
    case BUS_HOST:
      return "Host";
    case BUS_VIRTUAL:
      return "Virtual";
    default:
      return "Other";
  }
}

KeyboardNodes::KeyboardNodes(EventLoop& loop)
    : context_(checked(udev_new(), "udev")),
      monitor_(checked(udev_monitor_new_from_netlink(context_.get(), "udev"), "udev's events")),
      watch_(loop.watch(udev_monitor_get_fd(monitor_.get()), EPOLLIN,
                        [this](std::uint32_t) { receive(); })) {
  udev_monitor_filter_add_match_subsystem_devtype(monitor_.get(), "input", nullptr);
}

void KeyboardNodes::start(std::function<void(const KeyboardNode& node)> appeared,
                          std::function<void(dev_t number)> disappeared) {
  appeared_ = std::move(appeared);
  disappeared_ = std::move(disappeared);
  // What comes while the others are listed is reported afterwards.
  udev_monitor_enable_receiving(monitor_.get());
  const Owned<udev_enumerate> list(checked(udev_enumerate_new(context_.get()), "udev's devices"));
  udev_enumerate_add_match_subsystem(list.get(), "input");
  udev_enumerate_add_match_sysname(list.get(), "event*");
  udev_enumerate_scan_devices(list.get());
  for (udev_list_entry* entry = udev_enumerate_get_list_entry(list.get()); entry != nullptr;
       entry = udev_list_entry_get_next(entry)) {
    const Owned<udev_device> device(
        udev_device_new_from_syspath(context_.get(), udev_list_entry_get_name(entry)));
    if (device) {
      add(device.get());
    }
  }
}

void KeyboardNodes::receive() {
  const Owned<udev_device> device(udev_monitor_receive_device(monitor_.get()));
  if (!device) {
    return;
  }
  if (std::string_view(udev_device_get_action(device.get())) == "remove") {
    remove(udev_device_get_devnum(device.get()));
  } else {
    add(device.get());
  }
}

void KeyboardNodes::add(udev_device* device) {
  const auto node = keyboardNode(device);
  if (!node) {
    return;
  }
  const Identity identity{node->systemPath, node->description.seat};
  const auto known = known_.find(node->number);
  if (known != known_.end() && known->second == identity) {
    return;
  }
  remove(node->number);  // It has moved to another seat, or its removal was missed.
  known_[node->number] = identity;
  appeared_(*node);
}

void KeyboardNodes::remove(dev_t number) {
  if (known_.erase(number) > 0) {
    disappeared_(number);
  }
}

}  // namespace zephlin
