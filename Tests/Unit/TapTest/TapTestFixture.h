#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "Platform/Simulated/SimulatedDesktop.h"
#include "Zephlin/TapTestController.h"

namespace zephlin {

/// What the system returns where Input Monitoring is not allowed.
constexpr auto notPermitted = static_cast<std::int32_t>(0xE00002E2);

/// The tap test on a simulated desktop whose wall clock begins at 0, which keeps small times exact,
/// and the views of its window.
class TapTestFixture : public testing::Test {
 protected:
  TapTestFixture() { desktop_.setWallTime(WallTime(Seconds(0))); }

  void show() { controller_->show(); }
  /// Shows the window; then a modifier tells the event tap the state that Caps Lock is in.
  void showAndTouchShift() {
    show();
    touchShift();
  }
  void showWithPolling() {
    desktop_.eventTaps().setAllowed(false);
    show();
  }
  /// Besides, the first poll has seen the state that Caps Lock is in.
  void showWithPollingAndWait() {
    showWithPolling();
    desktop_.runFor(0.01);
  }
  void close() { window().close(); }
  void touchShift() {
    desktop_.pressModifier(modifierShift);
    desktop_.pressModifier(0);
  }
  /// The system's Caps Lock changes without a press of the key.
  void toggle() {
    desktop_.eventTaps().setFlags(desktop_.eventTaps().currentModifierFlags() ^ modifierCapsLock);
  }

  SimulatedWindow& window() { return *desktop_.windows().window(); }
  /// The stack that holds the window's eight views.
  Box& container() { return viewAs<Box>(*window().contentView); }
  StackView& stack() { return viewAs<StackView>(*container().subviews().at(0).view); }
  template <typename Kind>
  Kind& row(std::size_t index) {
    return viewAs<Kind>(*stack().arrangedSubviews().at(index).view);
  }
  RoundedView& card(std::size_t index) {
    return viewAs<RoundedView>(*row<StackView>(2).arrangedSubviews().at(index).view);
  }
  StackView& cardStack(std::size_t index) {
    return viewAs<StackView>(*card(index).subviews().at(0).view);
  }
  /// The count (0) or the caption (1) of a card.
  Label& cardLabel(std::size_t index, std::size_t line) {
    return viewAs<Label>(*cardStack(index).arrangedSubviews().at(line).view);
  }
  RoundedView& pill() { return row<RoundedView>(3); }
  Label& verdict() { return viewAs<Label>(*pill().subviews().at(0).view); }
  Label& latency() { return row<Label>(4); }
  Label& note() { return row<Label>(7); }

  /// In the controller and on the cards.
  void expectCounts(std::int64_t presses, std::int64_t toggles) {
    EXPECT_EQ(controller_->pressCount(), presses);
    EXPECT_EQ(controller_->toggleCount(), toggles);
    EXPECT_EQ(cardLabel(0, 0).text(), std::to_string(presses));
    EXPECT_EQ(cardLabel(1, 0).text(), std::to_string(toggles));
  }
  void expectVerdict(const std::string& text, const Color& textColor, const Color& fill) {
    EXPECT_EQ(verdict().text(), text);
    EXPECT_EQ(verdict().textColor(), textColor);
    EXPECT_EQ(pill().fill, fill);
    desktop_.runUntilIdleNow();
    EXPECT_EQ(pill().layer.value().backgroundColor, fill);
  }
  void expectWaiting() {
    expectVerdict("Waiting for taps…", {ColorRole::SecondaryLabel, 1}, {ColorRole::Separator, 1});
  }
  void expectInstant() {
    expectVerdict("Every tap registered. Instant", {ColorRole::SystemGreen, 1},
                  {ColorRole::SystemGreen, 0.14});
  }
  void expectMissing(const std::string& text) {
    expectVerdict(text, {ColorRole::SystemRed, 1}, {ColorRole::SystemRed, 0.14});
  }
  void expectChannels(std::size_t inputs, std::size_t taps, std::size_t timers) {
    EXPECT_EQ(desktop_.hidDevices().openInputs(), inputs);
    EXPECT_EQ(desktop_.eventTaps().openTaps(), taps);
    EXPECT_EQ(desktop_.dispatch().liveTimers().size(), timers);
  }

  SimulatedDesktop desktop_;
  std::shared_ptr<TapTestController> controller_ = std::make_shared<TapTestController>(desktop_);

 private:
  /// Throws std::bad_cast where the view is of another kind.
  template <typename Kind>
  static Kind& viewAs(View& view) {
    return dynamic_cast<Kind&>(view);
  }
};

}  // namespace zephlin
