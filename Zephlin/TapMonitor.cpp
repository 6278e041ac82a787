// TapTestController, counting: from a tap to the verdict.

#include <chrono>
#include <cmath>
#include <cstdio>
#include <utility>

#include "Base/CheckedArithmetic.h"
#include "Zephlin/TapTestController.h"

namespace zephlin {

namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr std::chrono::milliseconds pollInterval{10};
/// A toggle that comes later than this after a press was not caused by it.
constexpr Milliseconds maximumLatency{1000};

constexpr double verdictFillAlpha = 0.14;

bool hasCapsLock(ModifierFlags flags) {
  return (flags & modifierCapsLock) != 0;
}

std::string openFailure(std::int32_t code) {
  char text[80];
  std::snprintf(text, sizeof text,
                "Zephlin: IOHIDManagerOpen failed (0x%x), press channel disabled",
                static_cast<unsigned>(code));
  return text;
}

std::string missingTaps(std::int64_t count) {
  return std::to_string(count) + (count == 1 ? " tap" : " taps") + " went missing. The delay is on";
}

}  // namespace

void TapTestController::startMonitoring() {
  startPressMonitor();
  if (!startToggleTap()) {
    startTogglePolling();
  }
}

void TapTestController::startPressMonitor() {
  auto opened = platform_.hidDevices().openCapsLockKey([this](const KeyEvent& event) {
    if (event.isDown) {
      registerPress(event.time);
    }
  });
  if (const auto* code = std::get_if<std::int32_t>(&opened)) {
    platform_.systemLog()->log(openFailure(*code));
    return;
  }
  hidManager_ = std::move(std::get<std::unique_ptr<Observation>>(opened));
}

bool TapTestController::startToggleTap() {
  auto tap = platform_.eventTaps().listenToFlagsChanged(
      [this](const FlagsEvent& event) { registerCapsState(event, tapCapsState_); });
  if (!tap) {
    platform_.systemLog()->log(
        "Zephlin: could not create flagsChanged event tap, falling back to polling");
    return false;
  }
  eventTap_ = std::move(tap);
  return true;
}

void TapTestController::startTogglePolling() {
  pollTimer_ =
      platform_.dispatch().scheduleTimer(pollInterval, Seconds::zero(), [weak = weak_from_this()] {
        if (const auto self = weak.lock()) {
          self->registerCapsState({self->platform_.eventTaps().currentModifierFlags(),
                                   self->platform_.clock().now().time_since_epoch()},
                                  self->polledCapsState_);
        }
      });
}

void TapTestController::stopMonitoring() {
  hidManager_.reset();
  eventTap_.reset();
  pollTimer_.reset();
  polledCapsState_.reset();
  tapCapsState_.reset();
}

void TapTestController::registerPress(EventTime time) {
  pressCount_ = checkedSum(pressCount_, 1);
  lastPressTime_ = time;
  refreshLabels();
}

void TapTestController::registerCapsState(const FlagsEvent& event, RememberedState& channel) {
  const bool isOn = hasCapsLock(event.flags);
  // The first observation only sets the baseline.
  if (!event.changeTime || !channel || *channel == isOn) {
    channel = isOn;
    return;
  }
  toggleCount_ = checkedSum(toggleCount_, 1);
  if (lastPressTime_) {
    const Milliseconds elapsed = *event.changeTime - *lastPressTime_;
    if (elapsed < maximumLatency) {
      lastLatencyMS_ = std::llround(elapsed.count());
    }
  }
  refreshLabels();
  channel = isOn;
}

void TapTestController::clearCounts() {
  pressCount_ = 0;
  toggleCount_ = 0;
  lastPressTime_.reset();
  lastLatencyMS_.reset();
}

void TapTestController::resetPressed() {
  clearCounts();
  refreshLabels();
}

void TapTestController::refreshLabels() {
  pressCountLabel_->setText(std::to_string(pressCount_));
  toggleCountLabel_->setText(std::to_string(toggleCount_));
  // A space keeps the label's height.
  latencyLabel_->setText(
      lastLatencyMS_ ? "Last tap registered in " + std::to_string(*lastLatencyMS_) + " ms" : " ");
  refreshVerdict();
  display();
}

void TapTestController::refreshVerdict() {
  if (pressCount_ == 0) {
    verdictLabel_->setText("Waiting for taps…");
    verdictLabel_->setTextColor({ColorRole::SecondaryLabel});
    verdictPill_->fill = Color{ColorRole::Separator};
  } else {
    const bool allRegistered = toggleCount_ >= pressCount_;
    const ColorRole role = allRegistered ? ColorRole::SystemGreen : ColorRole::SystemRed;
    verdictLabel_->setText(allRegistered ? "Every tap registered. Instant"
                                         : missingTaps(pressCount_ - toggleCount_));
    verdictLabel_->setTextColor({role});
    verdictPill_->fill = {role, verdictFillAlpha};
  }
  verdictPill_->needsDisplay = true;
}

void TapTestController::refreshChannelNote() {
  if (hidManager_) {
    channelNoteLabel_->setText(
        "Zephlin only watches the Caps Lock key here, nothing else you type.");
    channelNoteLabel_->setTextColor({ColorRole::TertiaryLabel});
  } else {
    channelNoteLabel_->setText(
        "To count taps, allow Zephlin under System Settings › Privacy & Security › Input "
        "Monitoring.");
    channelNoteLabel_->setTextColor({ColorRole::SystemOrange});
  }
  display();
}

void TapTestController::display() {
  if (window_) {
    window_->displayIfNeeded();
  }
}

}  // namespace zephlin
