// Grabs an event device and opens uinput, as programs do that change keys, but passes nothing on:
// KeyboardGrabber PATH. Says so once the device is its own; a signal ends it.

#include <fcntl.h>
#include <linux/input.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdio>

#include "Base/FileDescriptor.h"

int main(int argumentCount, char** arguments) {
  const zephlin::FileDescriptor device(
      ::open(argumentCount > 1 ? arguments[1] : "", O_RDWR | O_CLOEXEC));
  const zephlin::FileDescriptor uinput(::open("/dev/uinput", O_RDWR | O_CLOEXEC));
  if (::ioctl(device.get(), EVIOCGRAB, 1) != 0) {
    std::perror("cannot grab it");
    return 1;
  }
  std::puts("grabbed");
  std::fflush(stdout);
  ::pause();
}
