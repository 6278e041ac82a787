// Prints the text that programs on the text console get from its keyboard, in CapsLockJudge's form.
// It ends by a signal.

#include <termios.h>

#include <cctype>

#include "Tests/VM/JudgeSeat.h"

int main() {
  const int console = ::open("/dev/tty1", O_RDWR | O_CLOEXEC);
  termios settings{};
  if (::tcgetattr(console, &settings) != 0) {
    zephlin::print("there is no console");
    return 1;
  }
  ::cfmakeraw(&settings);
  ::tcsetattr(console, TCSAFLUSH, &settings);
  zephlin::print("ready");
  char letter = 0;
  while (::read(console, &letter, 1) == 1) {
    if (letter == '~') {
      zephlin::print("key KEY_F12 0");  // Its sequence is "\x1b[24~".
    } else if (std::isalpha(static_cast<unsigned char>(letter)) != 0) {
      zephlin::print("text %c", letter);
    }
  }
}
