// The least that passing on a grabbed keyboard's events can cost: each is read and written to a
// clone, in real time. The argument is the keyboard's event device.

#include <fcntl.h>
#include <libevdev/libevdev-uinput.h>
#include <sched.h>
#include <unistd.h>

#include <array>
#include <cstdio>

int main(int /*argumentCount*/, char** arguments) {
  libevdev* keyboard = nullptr;
  libevdev_uinput* clone = nullptr;
  const int input = ::open(arguments[1], O_RDWR | O_CLOEXEC);
  if (libevdev_new_from_fd(input, &keyboard) != 0 ||
      libevdev_uinput_create_from_device(keyboard, LIBEVDEV_UINPUT_OPEN_MANAGED, &clone) != 0 ||
      libevdev_grab(keyboard, LIBEVDEV_GRAB) != 0) {
    std::perror(arguments[1]);
    return 1;
  }
  const int output = libevdev_uinput_get_fd(clone);
  sched_param parameters{};
  parameters.sched_priority = 1;
  if (::sched_setscheduler(0, SCHED_RR, &parameters) != 0) {
    std::perror("real-time priority");
    return 1;
  }
  std::array<input_event, 64> events{};
  for (;;) {
    const ssize_t size = ::read(input, events.data(), sizeof events);
    if (size <= 0 || ::write(output, events.data(), static_cast<std::size_t>(size)) != size) {
      std::perror("passing events on");
      return 1;
    }
  }
}
