#pragma once

#include <functional>
#include <string>
#include <vector>

#include "KeyboardService/Service/Evdev/CapsLockRewriter.h"
#include "KeyboardService/Service/Evdev/PhysicalKeyboard.h"
#include "KeyboardService/Service/Evdev/UinputKeyboard.h"
#include "KeyboardService/Service/EventLoop.h"
#include "KeyboardService/Service/Log.h"

namespace zephlin {

/// Backspace, Enter and Escape held together on one keyboard: the way out if it stops working.
class EmergencyChord {
 public:
  /// Whether this event completes the chord.
  bool completes(const InputEvent& event);

 private:
  bool backspace_ = false;
  bool enter_ = false;
  bool escape_ = false;
};

/// A keyboard that is grabbed, while programs see a clone of it with Caps Lock rewritten. It is
/// grabbed once programs have had time to find the clone and no key is held; until then it works as
/// usual. The destructor releases it, with no key held. What is typed is never logged.
class GrabbedKeyboard {
 public:
  enum class End { DeviceGone, EmergencyChord };

  /// `ended` is to destroy this object, which does nothing after that call.
  /// Throws RequestError if the device or uinput cannot be used, and std::system_error with ENODEV
  /// if the device has gone.
  GrabbedKeyboard(EventLoop& loop, const std::string& path, CapsLockRule rule, Log log,
                  std::function<void(End)> ended);
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
  void setLed(const InputEvent& led);
  void waitForDeadline();
  void unlessGone(const std::function<void()>& action);
  void end(End end);

  std::string path_;
  Log log_;
  std::function<void(End)> ended_;
  PhysicalKeyboard keyboard_;
  UinputKeyboard uinput_;
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
