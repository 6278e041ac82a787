#pragma once

#include <cstdint>
#include <functional>
#include <string>

/// What happens to a Mac. Main thread.
namespace standins {

/// Time stands still from now on, except for `advance`. Nothing may be pending.
void stopTime();
/// Time runs by itself again.
void resumeTime();
/// Moves the time, which stands still, and runs on the main thread what falls due, in order.
void advance(double seconds);

/// Waits until the serial queues have nothing more to do, and runs what they posted to the main
/// queue, until nothing is left.
void settle();

/// A HID device is plugged in, of this class.
void attachDevice(const std::string& serviceClass = "IOHIDDevice");
/// A keyboard reports a value of this usage.
void reportKey(int usagePage, int usage, long value);
/// An event of this type, with these flags, passes the event taps that want it. The notices about a
/// tap itself come without an event, and to every tap.
void postEvent(std::uint32_t type, std::uint64_t flags);
/// The user makes the desktop dark, or light: AppKit updates all layers then.
void setDark(bool isDark);
/// Fires each timer of the main run loop that has this interval.
void fireTimers(double interval);
/// Does the work on the event loop once the application that runs next has launched.
void whenLaunched(std::function<void()> work);

}  // namespace standins
