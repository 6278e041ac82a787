#include "Platform/Linux/Watching/UdevMonitor.h"

#include <string_view>
#include <utility>
#include <vector>

namespace zephlin {

UdevMonitor::UdevMonitor(const char* subsystem, const char* action,
                         std::function<void(udev_device* device)> callback)
    : action_(action), callback_(std::move(callback)), context_(udev_new()) {
  monitor_.reset(udev_monitor_new_from_netlink(context_.get(), "udev"));
  if (!monitor_ ||
      udev_monitor_filter_add_match_subsystem_devtype(monitor_.get(), subsystem, nullptr) < 0 ||
      udev_monitor_enable_receiving(monitor_.get()) < 0) {
    return;
  }
  notifier_ =
      std::make_unique<QSocketNotifier>(udev_monitor_get_fd(monitor_.get()), QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] { receive(); });
}

void UdevMonitor::receive() {
  std::vector<UdevPointer<udev_device>> owners;
  std::vector<udev_device*> devices;
  while (auto device = UdevPointer<udev_device>(udev_monitor_receive_device(monitor_.get()))) {
    const char* action = udev_device_get_action(device.get());
    if (action != nullptr && std::string_view(action) == action_) {
      devices.push_back(device.get());
      owners.push_back(std::move(device));
    }
  }
  callback_.callForEach(devices);
}

}  // namespace zephlin
