#include "KeyboardService/Service/Evdev/KeyboardNodes.h"

#include <sys/epoll.h>

#include <cerrno>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

namespace zephlin {
namespace {

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

/// None unless the device is an event device of a keyboard that is not one of our clones.
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
  KeyboardNode node{udev_device_get_devnum(device), udev_device_get_syspath(device), path, {}};
  node.description.vendorID = identity(input, "id/vendor");
  node.description.productID = identity(input, "id/product");
  node.description.product = attribute(input, "name");
  node.description.transport = busName(identity(input, "id/bustype"));
  return node;
}

}  // namespace

KeyboardNodes::KeyboardNodes(EventLoop& loop)
    : context_(checked(udev_new(), "udev")),
      monitor_(checked(udev_monitor_new_from_netlink(context_.get(), "udev"), "udev's events")),
      watch_(loop.watch(udev_monitor_get_fd(monitor_.get()), EPOLLIN,
                        [this](std::uint32_t) { receive(); })) {
  udev_monitor_filter_add_match_subsystem_devtype(monitor_.get(), "input", nullptr);
}

void KeyboardNodes::start(Observer observer) {
  observer_ = std::move(observer);
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
  const auto known = known_.find(node->number);
  if (known != known_.end() && known->second == node->systemPath) {
    return;
  }
  remove(node->number);  // Its removal was missed if it was known.
  known_[node->number] = node->systemPath;
  observer_.appeared(*node);
}

void KeyboardNodes::remove(dev_t number) {
  if (known_.erase(number) > 0) {
    observer_.disappeared(number);
  }
}

}  // namespace zephlin
