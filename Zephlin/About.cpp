#include "Zephlin/About.h"

namespace zephlin {

namespace {

std::string informativeText() {
  return std::string(
             "Your Mac normally ignores quick Caps Lock taps, so fast typists end up with the "
             "wrong casing. Zephlin makes every tap register instantly, the way it should."
             "\n\n"
             "It's completely safe. Zephlin changes nothing permanent — turn it off anytime from "
             "this menu, and your Mac goes right back to normal."
             "\n\n"
             "To turn it off: uncheck \"") +
         instantCapsLockTitle +
         "\" in the menu."
         "\n\n"
         "Made by the Zephlin developers.";
}

}  // namespace

void runAboutAlert(Platform& platform) {
  Alert alert;
  alert.messageText = productTitle;
  alert.informativeText = informativeText();
  alert.buttons = {"OK"};
  platform.application().activateIgnoringOtherApps();
  platform.alerts().runModal(alert);
}

}  // namespace zephlin
