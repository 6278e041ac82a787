#pragma once

#include <functional>
#include <string>
#include <vector>

#include "KeyboardService/Service/Evdev/CapsLockRewriter.h"
#include "KeyboardService/Service/Evdev/EmergencyChord.h"
#include "KeyboardService/Service/Evdev/PhysicalKeyboard.h"
#include "KeyboardService/Service/Evdev/UinputKeyboard.h"
#include "KeyboardService/Service/EventLoop.h"

namespace zephlin {

/// A keyboard that is taken away from programs, which see a clone of it with Caps Lock rewritten.
/// It is taken once programs have had the time to find the clone and no key is held; until then it
/// works as ever. Its end gives it back, with no key held. What is typed is never logged.
class GrabbedKeyboard {
 public:
  /// Each of these is the last thing that a callback of the loop does, so it may end the keyboard.
  struct Observer {
    std::function<void()> emergency;                             ///< The chord was pressed.
    std::function<void()> gone;                                  ///< The device has gone.
    std::function<void(const std::string& what)> reportTrouble;  ///< For the log.
  };

  /// Throws RequestError if the device or uinput cannot be used, and std::system_error with ENODEV
  /// if the device has gone.
  GrabbedKeyboard(EventLoop& loop, const std::string& path, CapsLockRule rule, Observer observer);
  GrabbedKeyboard(const GrabbedKeyboard&) = delete;
  GrabbedKeyboard& operator=(const GrabbedKeyboard&) = delete;
  ~GrabbedKeyboard();

  void setRule(CapsLockRule rule) { rewriter_.setRule(rule); }

 private:
  void onKeyboard();
  void onDeadline();
  void onLedEvents();
  void tryToGrab();
  void startRewriting();
  bool rewriteTyped();
  void setLed(const InputEvent& light);
  void waitForDeadline();
  void unlessGone(const std::function<void()>& action);

  Observer observer_;
  PhysicalKeyboard keyboard_;
  UinputKeyboard clone_;
  CapsLockRewriter rewriter_;
  EmergencyChord chord_;
  bool isGrabbed_ = false;
  bool hasReportedTrouble_ = false;
  EventSource watchKeyboard_;
  EventSource watchLeds_;
  EventSource nextTry_;
  EventSource deadline_;
};

}  // namespace zephlin
