// Sets what the text console makes of keys: ConsoleMode off|unicode

#include <fcntl.h>
#include <linux/kd.h>
#include <sys/ioctl.h>

#include <string_view>

int main(int argumentCount, char** arguments) {
  const int console = ::open("/dev/tty1", O_RDWR | O_CLOEXEC);
  const bool isOff = argumentCount > 1 && std::string_view(arguments[1]) == "off";
  return ::ioctl(console, KDSKBMODE, isOff ? K_OFF : K_UNICODE) == 0 ? 0 : 1;
}
