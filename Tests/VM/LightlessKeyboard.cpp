// A keyboard without lights for the virtual machine, made through uinput. Each line of its standard
// input turns a key, such as "KEY_A 1"; it is pulled at the end.

#include <libevdev/libevdev-uinput.h>

#include <iostream>
#include <string>

int main() {
  libevdev* const device = libevdev_new();
  libevdev_set_name(device, "Lightless Keyboard");
  libevdev_set_id_bustype(device, BUS_BLUETOOTH);
  for (unsigned code = KEY_ESC; code < KEY_KPDOT; ++code) {
    libevdev_enable_event_code(device, EV_KEY, code, nullptr);
  }
  libevdev_uinput* keyboard = nullptr;
  if (libevdev_uinput_create_from_device(device, LIBEVDEV_UINPUT_OPEN_MANAGED, &keyboard) != 0) {
    std::cerr << "uinput cannot be used\n";
    return 1;
  }
  std::string key;
  int value = 0;
  while (std::cin >> key >> value) {
    const int code = libevdev_event_code_from_name(EV_KEY, key.c_str());
    libevdev_uinput_write_event(keyboard, EV_KEY, static_cast<unsigned>(code), value);
    libevdev_uinput_write_event(keyboard, EV_SYN, SYN_REPORT, 0);
  }
  libevdev_uinput_destroy(keyboard);
  libevdev_free(device);
}
