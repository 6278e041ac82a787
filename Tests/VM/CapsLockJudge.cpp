// Plays the compositor in the virtual machine: reads all keyboards as libinput does, keeps one
// state of XKB for them, sets their LEDs, and prints what a program would see:
//
//   10.123456 + event3                 a keyboard appears
//   10.123456 - event3 held=0          and goes, with so many keys down
//   10.123456 key event3 KEY_A 1
//   10.123456 moved event3 REL_X 5     a mouse in the same device
//   10.123456 text H
//   10.123456 lock 1                   Caps Lock goes on or off
//
// CapsLockJudge [XKB OPTIONS]. It ends by a signal.

#include <fcntl.h>
#include <libevdev/libevdev.h>
#include <libudev.h>
#include <linux/input.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "Tests/VM/CapsLockLed.h"
#include "Tests/VM/JudgeSeat.h"

namespace zephlin {
namespace {

struct Device {
  int descriptor = -1;
  std::set<std::uint16_t> held;
};

class Judge {
 public:
  explicit Judge(const char* options) : seat_(options) {}

  void run() {
    udev* const context = udev_new();
    udev_monitor* const monitor = udev_monitor_new_from_netlink(context, "udev");
    udev_monitor_filter_add_match_subsystem_devtype(monitor, "input", nullptr);
    udev_monitor_enable_receiving(monitor);
    for (int number = 0; number < 100; ++number) {
      add("event" + std::to_string(number));
    }
    print("ready");
    for (;;) {
      waitFor(udev_monitor_get_fd(monitor));
      if (udev_device* const device = udev_monitor_receive_device(monitor)) {
        hotplug(udev_device_get_sysname(device), udev_device_get_action(device));
        udev_device_unref(device);
      }
    }
  }

 private:
  void hotplug(const std::string& name, const std::string& action) {
    if (action == "add" && name.starts_with("event")) {
      add(name);
    } else if (action == "remove") {
      remove(name);
    }
  }

  void add(const std::string& name) {
    const int descriptor = ::open(("/dev/input/" + name).c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    libevdev* device = nullptr;
    if (descriptor < 0 || libevdev_new_from_fd(descriptor, &device) < 0) {
      return;
    }
    const bool isKeyboard = libevdev_has_event_code(device, EV_KEY, KEY_CAPSLOCK) != 0;
    libevdev_free(device);
    if (!isKeyboard || devices_.contains(name)) {
      ::close(descriptor);
      return;
    }
    devices_[name].descriptor = descriptor;
    print("+ %s", name.c_str());
    setLeds();
  }

  void remove(const std::string& name) {
    const auto found = devices_.find(name);
    if (found == devices_.end()) {
      return;
    }
    print("- %s held=%zu", name.c_str(), found->second.held.size());
    for (const std::uint16_t code : std::set<std::uint16_t>(found->second.held)) {
      take(name, found->second, {{}, EV_KEY, code, 0});
    }
    ::close(found->second.descriptor);
    devices_.erase(found);
  }

  /// Handles the keyboards until there is something to receive on the descriptor.
  void waitFor(int descriptor) {
    for (;;) {
      std::vector<pollfd> polled{{descriptor, POLLIN, 0}};
      std::vector<std::string> names{""};
      for (const auto& [name, device] : devices_) {
        polled.push_back({device.descriptor, POLLIN, 0});
        names.push_back(name);
      }
      ::poll(polled.data(), polled.size(), -1);
      for (std::size_t index = 1; index < polled.size(); ++index) {
        if (polled[index].revents != 0) {
          read(names[index]);
        }
      }
      if (polled[0].revents != 0) {
        return;
      }
    }
  }

  void read(const std::string& name) {
    Device& device = devices_.at(name);
    input_event event{};
    ssize_t size = 0;
    while ((size = ::read(device.descriptor, &event, sizeof event)) == sizeof event) {
      take(name, device, event);
    }
    if (size < 0 && errno == ENODEV) {
      remove(name);
    }
  }

  void take(const std::string& name, Device& device, const input_event& event) {
    if (event.type == EV_REL) {
      print("moved %s %s %d", name.c_str(), libevdev_event_code_get_name(EV_REL, event.code),
            event.value);
    }
    if (event.type != EV_KEY || event.value == 2 || event.code >= KEY_CNT) {
      return;
    }
    print("key %s %s %d", name.c_str(), libevdev_event_code_get_name(EV_KEY, event.code),
          event.value);
    // Like libinput, which forgets releases of what it has not seen pressed.
    const bool turned = event.value == 1 ? device.held.insert(event.code).second
                                         : device.held.erase(event.code) > 0;
    if (turned) {
      const bool wasLocked = seat_.isLocked();
      seat_.key(event.code, event.value == 1);
      if (seat_.isLocked() != wasLocked) {
        print("lock %d", seat_.isLocked() ? 1 : 0);
        setLeds();
      }
    }
  }

  void setLeds() {
    for (const auto& [name, device] : devices_) {
      if (!setCapsLockLed(device.descriptor, seat_.isLocked())) {
        print("no LED on %s", name.c_str());
      }
    }
  }

  Seat seat_;
  std::map<std::string, Device> devices_;
};

}  // namespace
}  // namespace zephlin

int main(int argumentCount, char** arguments) {
  zephlin::silenceConsole();
  zephlin::Judge(argumentCount > 1 ? arguments[1] : "").run();
}
