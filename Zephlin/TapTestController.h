#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "Platform/Platform.h"
#include "Zephlin/RoundedView.h"

namespace zephlin {

/// Answers whether every quick Caps Lock tap reaches the system. Two channels watch the key: the
/// presses that the keyboard reports, and the toggles of the Caps Lock state that the system makes
/// of those it accepts. A window compares their counts. It only observes. Main thread.
///
/// Counting is in TapMonitor.cpp, the window in TapTestWindow.cpp.
class TapTestController : public WindowDelegate,
                          public std::enable_shared_from_this<TapTestController> {
 public:
  /// Must be held by a std::shared_ptr; the platform must outlive it.
  explicit TapTestController(Platform& platform);
  TapTestController(const TapTestController&) = delete;
  TapTestController& operator=(const TapTestController&) = delete;
  ~TapTestController() override = default;

  /// Opens the window, clears the counts and starts watching. If the window is already open, new
  /// channels are opened before the old ones are closed.
  void show();
  void windowWillClose() override;
  /// Clears the counts and the latency; the channels keep running.
  void resetPressed();

  /// Null before the first `show`.
  [[nodiscard]] Window* window() const { return window_.get(); }
  [[nodiscard]] std::int64_t pressCount() const { return pressCount_; }
  [[nodiscard]] std::int64_t toggleCount() const { return toggleCount_; }
  [[nodiscard]] std::optional<std::int64_t> lastLatencyMS() const { return lastLatencyMS_; }

 private:
  /// The last Caps Lock state that a toggle channel has seen; absent before the first.
  using RememberedState = std::optional<bool>;

  void startMonitoring();
  void startPressMonitor();
  bool startToggleTap();
  void startTogglePolling();
  void stopMonitoring();
  void registerPress(EventTime time);
  void registerCapsState(const FlagsEvent& event, RememberedState& channel);
  void clearCounts();
  void refreshLabels();
  void refreshVerdict();
  void refreshChannelNote();
  /// Shows what has changed in the views, if there is a window.
  void display();

  /// Shows the platform's help below the channel note if no press can be counted, and only then.
  void refreshHelp();
  void buildWindow();
  std::shared_ptr<View> makeContent();
  std::shared_ptr<View> makeStatsRow();
  static std::shared_ptr<View> statCard(const std::shared_ptr<Label>& value, const char* caption);

  Platform& platform_;
  std::unique_ptr<Window> window_;
  std::shared_ptr<Label> pressCountLabel_;
  std::shared_ptr<Label> toggleCountLabel_;
  std::shared_ptr<Label> latencyLabel_;
  std::shared_ptr<Label> verdictLabel_;
  std::shared_ptr<RoundedView> verdictPill_;
  std::shared_ptr<Label> channelNoteLabel_;
  /// What the window has below the channel note.
  std::optional<CapsLockKeyHelp> help_;
  std::int64_t pressCount_ = 0;
  std::int64_t toggleCount_ = 0;
  std::optional<EventTime> lastPressTime_;
  std::optional<std::int64_t> lastLatencyMS_;
  std::unique_ptr<Observation> hidManager_;
  std::unique_ptr<Observation> eventTap_;
  std::unique_ptr<Timer> pollTimer_;
  RememberedState polledCapsState_;
  RememberedState tapCapsState_;
};

}  // namespace zephlin
