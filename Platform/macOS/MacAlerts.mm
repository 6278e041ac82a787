#import "Platform/macOS/MacAlerts.h"

#import <AppKit/AppKit.h>

#import "Platform/macOS/Retained.h"
#import "Platform/macOS/Text.h"

namespace zephlin {

void MacAlerts::runModal(const Alert& alert) {
  const Retained<NSAlert*> native([[NSAlert alloc] init]);
  [native.get() setMessageText:nativeText(alert.messageText)];
  [native.get() setInformativeText:nativeText(alert.informativeText)];
  [native.get() setAlertStyle:NSAlertStyleInformational];
  for (const std::string& title : alert.buttons) {
    [native.get() addButtonWithTitle:nativeText(title)];
  }
  [native.get() runModal];
}

}  // namespace zephlin
