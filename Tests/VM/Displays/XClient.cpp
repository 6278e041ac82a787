// A window under an X server that prints the text that programs get from its keyboard, in
// CapsLockJudge's form. It ends by a signal.

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <cstdlib>

#include "Tests/VM/Displays/PrintedKeys.h"

namespace zephlin {
namespace {

constexpr int sideLength = 64;

void printKeys() {
  Display* const display = XOpenDisplay(nullptr);
  if (display == nullptr) {
    print("there is no X server");
    std::exit(1);
  }
  // Each press is one that was made.
  XAutoRepeatOff(display);
  const Window window = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, sideLength,
                                            sideLength, 0, 0, 0);
  XSelectInput(display, window, KeyPressMask | KeyReleaseMask | ExposureMask | FocusChangeMask);
  XMapWindow(display, window);
  for (;;) {
    XEvent event;
    XNextEvent(display, &event);
    switch (event.type) {
      case Expose:
        XSetInputFocus(display, window, RevertToNone, CurrentTime);
        break;
      case FocusIn:
        print("ready");
        break;
      case MappingNotify:
        XRefreshKeyboardMapping(&event.xmapping);
        break;
      case KeyPress:
      case KeyRelease: {
        printKey(event.xkey.keycode - evdevOffset, event.type == KeyPress);
        if (event.type == KeyPress) {
          std::array<char, 16> text{};
          KeySym symbol = NoSymbol;
          XLookupString(&event.xkey, text.data(), text.size() - 1, &symbol, nullptr);
          const char* const name = XKeysymToString(symbol);
          printMeaning(name == nullptr ? "NoSymbol" : name, text.data());
        }
        break;
      }
      default:
        break;
    }
  }
}

}  // namespace
}  // namespace zephlin

int main() {
  zephlin::printKeys();
}
