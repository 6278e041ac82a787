#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "KeyboardService/Service/Evdev/CapsLockRewriter.h"
#include "KeyboardService/Service/Evdev/NodeHandling.h"
#include "KeyboardService/Service/Evdev/QueueOverflow.h"
#include "KeyboardService/Service/Evdev/UinputKeyboard.h"

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
/// usual.
class GrabbedKeyboard final : public NodeHandling {
 public:
  /// `emergencyChord` is called when it is typed, on the loop's thread; it may not destroy this
  /// object within the call.
  GrabbedKeyboard(EventLoop& loop, const KeyboardNode& node, CapsLockRule rule, Report report,
                  std::function<void()> emergencyChord);
  GrabbedKeyboard(const GrabbedKeyboard&) = delete;
  GrabbedKeyboard& operator=(const GrabbedKeyboard&) = delete;
  ~GrabbedKeyboard() override;

  void setRule(CapsLockRule rule) override { rewriter_.setRule(rule); }

 private:
  void onOpen() override;
  void confirm() override;
  void onClose() noexcept override;

  void makeClone();
  void endClone() noexcept;
  void grab();
  void startRewriting();
  void onKeyboard();
  void onDeadline();
  void onLedEvents();
  void rewriteTyped();
  void rewrite(const InputEvent& event, std::chrono::microseconds time);
  void waitForDeadline();

  std::function<void()> emergencyChord_;
  CapsLockRewriter rewriter_;
  QueueOverflow overflow_;
  EmergencyChord chord_;
  bool isGrabbed_ = false;
  std::optional<UinputKeyboard> clone_;
  EventSource watchKeyboard_;
  EventSource watchLeds_;
  EventSource settled_;
  EventSource deadline_;
  std::optional<std::chrono::microseconds> awaited_;  ///< What the timer is set to.
};

}  // namespace zephlin
