#import "Platform/macOS/MacAlerts.h"

#import <AppKit/AppKit.h>

#import "Platform/macOS/Retained.h"
#import "Platform/macOS/Text.h"

namespace zephlin {

namespace {

NSAlertStyle nativeStyle(AlertStyle style) {
  switch (style) {
    case AlertStyle::Informational:
      return NSAlertStyleInformational;
  }
}

}  // namespace

void MacAlerts::runModal(const Alert& alert) {
  const Retained<NSAlert*> native([[NSAlert alloc] init]);
  [native.get() setMessageText:nativeText(alert.messageText)];
  [native.get() setInformativeText:nativeText(alert.informativeText)];
  [native.get() setAlertStyle:nativeStyle(alert.style)];
  for (const std::string& title : alert.buttons) {
    [native.get() addButtonWithTitle:nativeText(title)];
  }
  [native.get() runModal];
}

}  // namespace zephlin
