#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Platform/Simulated/SimulatedDesktop.h"
#include "Zephlin/AppDelegate.h"

namespace zephlin {

/// The application on a simulated desktop with one keyboard. A run of hidutil takes 0.02 s, so an
/// apply or a restore takes 0.04 s and a read of the status 0.02 s.
class AppDelegateTest : public testing::Test {
 protected:
  static constexpr double engineCallTime = 0.04;
  static constexpr double statusReadTime = 0.02;
  /// Shorter than any delay of the application, longer than any engine call here.
  static constexpr double aMoment = 0.1;

  void launch() {
    delegate_ = std::make_shared<AppDelegate>(desktop_);
    desktop_.application().setDelegate(delegate_);
    desktop_.application().launch();
  }

  void launchAndSettle() {
    launch();
    desktop_.runFor(aMoment);
  }

  void launchSwitchedOff() {
    storage_->set("instantCapsLockEnabled", false);
    launchAndSettle();
  }

  void openMenuAndClick(const std::string& title) {
    ASSERT_TRUE(desktop_.openMenu());
    ASSERT_TRUE(desktop_.click(title));
  }

  std::vector<std::string> menuTitles() {
    std::vector<std::string> titles;
    for (const auto& item : desktop_.systemStatusBar().menuItems()) {
      titles.push_back(item->isSeparator ? "-" : item->title);
    }
    return titles;
  }

  std::shared_ptr<MenuItem> menuItem(const std::string& title) {
    return desktop_.systemStatusBar().menuItem(title);
  }

  std::string symbol() {
    const auto& image = desktop_.systemStatusBar().item().image;
    return image ? image->name : "none";
  }

  const std::string& toolTip() { return desktop_.systemStatusBar().item().toolTip; }
  const std::vector<std::string>& logged() { return desktop_.log().entries(); }

  /// When hidutil set this value.
  std::vector<double> timesOfSets(std::int64_t value) {
    std::vector<double> times;
    for (const HidutilCall& call : desktop_.hidutil().calls()) {
      if (call.kind == HidutilCallKind::Set && call.value == value) {
        times.push_back(call.start);
      }
    }
    return times;
  }

  std::size_t applies() { return desktop_.hidutil().setsOf(0); }
  std::size_t restores() { return desktop_.hidutil().setsOf(-1); }

  std::shared_ptr<SimulatedUserDefaultsStorage> storage_ =
      std::make_shared<SimulatedUserDefaultsStorage>();
  SimulatedDesktop desktop_{storage_};
  std::shared_ptr<AppDelegate> delegate_;
};

/// The smallest step of the simulation's time, in seconds.
inline const double oneTick = secondsFromTicks(1);

}  // namespace zephlin
