#pragma once

#import <AppKit/AppKit.h>

#include <functional>
#include <string>

/// The Mac that the tests run on: the stand-ins (StandInMac.mm), or a real one with AppKit itself
/// (RealMac.mm). Main thread.
namespace zephlin::test::mac {

/// Forgets what earlier tests did. From now on terminate: ends the event loop, not the process.
void reset();
/// Time stands still until it is resumed. A real Mac's time cannot be stopped, and goes on.
void stopTime();
void resumeTime();

/// Waits until the application's queues have nothing more to do. Also from within an event.
void settle();
/// Does the work on the event loop once the application that runs next has launched.
void whenLaunched(std::function<void()> work);
/// Does the work while an alert is modal.
void whenModal(std::function<void()> work);

/// The newest status item that is shown, or nil.
NSStatusItem* shownStatusItem();
/// The name of a system symbol's image; empty for nil.
std::string symbolName(NSImage* image);
/// The alert that is modal, or nil.
NSAlert* modalAlert();

/// The user makes the desktop dark, or light.
void setDark(bool isDark);
/// Whether the colour, where the view is, looks like the one of a layer; false for none.
bool isShown(NSColor* color, CGColorRef shown, NSView* view);

// What takes hands, or the user's consent. On a real Mac these throw std::logic_error.
void plugKeyboard();
void pressCapsLock();
void releaseCapsLock();
/// The user switches the login item off in the system's settings.
void switchLoginItemOff();
void makeLoginItemsFail();

}  // namespace zephlin::test::mac
