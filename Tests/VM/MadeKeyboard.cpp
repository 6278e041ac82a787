// A keyboard of a kind that is not emulated for the virtual machine, made through uinput: without
// LEDs and, with the argument "mouse", a mouse in the same device; with "LED", one of a usual kind
// that types faster than QEMU's. Each line of the standard input is an event, such as "KEY_A 1",
// which comes back on standard output when it is out, or "PAUSE 5", in milliseconds; the keyboard
// is pulled at the end.

#include <libevdev/libevdev-uinput.h>

#include <chrono>
#include <iostream>
#include <string>
#include <thread>

namespace {

void enable(libevdev* device, unsigned type, unsigned first, unsigned last) {
  for (unsigned code = first; code <= last; ++code) {
    libevdev_enable_event_code(device, type, code, nullptr);
  }
}

}  // namespace

int main(int argumentCount, char** arguments) {
  libevdev* const device = libevdev_new();
  libevdev_set_name(device, "Made Keyboard");
  libevdev_set_id_bustype(device, BUS_BLUETOOTH);
  enable(device, EV_KEY, KEY_ESC, KEY_KPDOT);
  const std::string kind = argumentCount > 1 ? arguments[1] : "";
  if (kind == "LED") {
    enable(device, EV_LED, LED_NUML, LED_SCROLLL);
  }
  if (kind == "mouse") {
    enable(device, EV_KEY, BTN_LEFT, BTN_MIDDLE);
    enable(device, EV_REL, REL_X, REL_Y);
    enable(device, EV_REL, REL_WHEEL, REL_WHEEL);
  }
  libevdev_uinput* keyboard = nullptr;
  if (libevdev_uinput_create_from_device(device, LIBEVDEV_UINPUT_OPEN_MANAGED, &keyboard) != 0) {
    std::cerr << "uinput cannot be used\n";
    return 1;
  }
  std::string name;
  int value = 0;
  while (std::cin >> name >> value) {
    if (name == "PAUSE") {
      std::this_thread::sleep_for(std::chrono::milliseconds(value));
      continue;
    }
    libevdev_uinput_write_event(
        keyboard, static_cast<unsigned>(libevdev_event_type_from_code_name(name.c_str())),
        static_cast<unsigned>(libevdev_event_code_from_code_name(name.c_str())), value);
    libevdev_uinput_write_event(keyboard, EV_SYN, SYN_REPORT, 0);
    std::cout << name << ' ' << value << std::endl;
  }
  libevdev_uinput_destroy(keyboard);
  libevdev_free(device);
}
