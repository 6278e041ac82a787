#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "Platform/Simulated/SimulatedDesktop.h"
#include "Tests/Simulation/HistoryRunner.h"
#include "Tests/Simulation/OverrideModel.h"
#include "Zephlin/AppDelegate.h"

namespace zephlin {

constexpr std::size_t maximumPendingEvents = 200;

struct ExpectedEntry {
  const char* title;
  bool isEnabled;
  bool isChecked;
  const char* keyEquivalent = "";
};

inline std::string quoted(const std::string& text) {
  return "\"" + text + "\"";
}

/// Thrown through the loop when something is wrong. No std::exception, which the application may
/// handle.
struct ViolationFound {
  Violation violation;
};

/// Compares a desktop with what it should be, after each turn of its loop.
class HistoryChecker {
 public:
  /// The desktop outlives the checker's last turn.
  HistoryChecker(SimulatedDesktop& desktop, OverrideModel& model)
      : desktop_(desktop), model_(model) {
    desktop_.hidutil().onCallStarted = [this](const HidutilCall& call) {
      model_.advanceTo(desktop_.loop().now());
      const std::string wrong = model_.callStarted(call);
      if (wrongCall_.empty()) {
        wrongCall_ = wrong;
      }
    };
    desktop_.hidutil().onCallEnded = [this](const HidutilCall& call,
                                            const ChildProcessResult* result) {
      model_.advanceTo(desktop_.loop().now());
      model_.callEnded(call, result, desktop_.wallTime().time_since_epoch().count());
    };
    desktop_.loop().addTurnObserver([this] { checkTurn(); });
  }

  HistoryChecker(const HistoryChecker&) = delete;
  HistoryChecker& operator=(const HistoryChecker&) = delete;
  ~HistoryChecker() {
    // A run that is under way ends when the desktop goes.
    desktop_.hidutil().onCallStarted = nullptr;
    desktop_.hidutil().onCallEnded = nullptr;
  }

  /// The application to look at, until the next call. Not owned.
  void watch(const std::shared_ptr<AppDelegate>& delegate) {
    delegate_ = delegate;
    menuWasOpened_ = false;
    expectCountsCleared();
  }

  /// The counts of the tap test may begin anew.
  void expectCountsCleared() {
    presses_ = 0;
    toggles_ = 0;
  }

  /// A press was delivered to the tap test.
  void expectPress() { ++presses_; }
  void checkMenuAtOpening() {
    menuWasOpened_ = true;
    const bool isEnabled = model_.isEnabled();
    const bool startsAtLogin = desktop_.loginService().status() == LoginServiceStatus::Enabled;
    const bool isBundle = desktop_.processInfo().bundlePath.ends_with(".app");
    const std::string line = model_.statusLine();
    const std::array<ExpectedEntry, 11> expected = {{
        {"Zephlin \u00b7 Instant Caps Lock", false, false},
        {line.c_str(), false, false},
        {"", true, false},
        {"Instant Caps Lock", true, isEnabled},
        {"Start at Login", isBundle, startsAtLogin && isBundle},
        {"Re-apply Now", isEnabled, false},
        {"", true, false},
        {"Tap Test\u2026", true, false},
        {"Check for Updates\u2026", true, false},
        {"About Zephlin", true, false},
        {"Quit Zephlin", true, false, "q"},
    }};
    const auto items = desktop_.systemStatusBar().menuItems();
    require(items.size() == expected.size(),
            "the menu has " + std::to_string(items.size()) + " entries");
    for (std::size_t i = 0; i < expected.size(); ++i) {
      const ExpectedEntry& entry = expected[i];
      const MenuItem& item = *items[i];
      const bool isSeparator = entry.title[0] == '\0';
      const bool isRight = item.isSeparator == isSeparator && item.title == entry.title &&
                           item.isChecked == entry.isChecked &&
                           (isSeparator || item.isEnabled == entry.isEnabled) &&
                           item.keyEquivalent == entry.keyEquivalent;
      require(isRight,
              "entry " + std::to_string(i + 1) + " of the menu is wrong: " + quoted(item.title));
    }
  }

  /// Every keyboard has the value of the user's choice.
  void checkSettled() {
    require(desktop_.keyboards().allHave(model_.isEnabled() ? 0 : -1),
            "the keyboards do not follow the user's last choice");
  }

 private:
  void checkTurn() {
    checkCalls();
    const std::optional<VirtualTicks> next = desktop_.loop().nextDeadline();
    if (!next || *next > desktop_.loop().now()) {
      model_.advanceTo(desktop_.loop().now());
      checkAtRest();
    }
  }

  void checkCalls() {
    require(wrongCall_.empty(), "the tool was run for " + wrongCall_);
    SimulatedHidutil& hidutil = desktop_.hidutil();
    require(hidutil.callsOnMainThread() == 0, "the tool was run on the main thread");
    require(hidutil.overlappingCalls() == 0, "two runs of the tool overlapped");
    require(hidutil.unknownCalls() == 0, "the tool was run with arguments it does not know");
  }

  void checkAtRest() {
    if (desktop_.hidutil().runningCalls() == 0) {
      require(!model_.owesCalls(), "a run of the tool that was asked for did not start");
    }
    require(desktop_.loop().pendingEvents() <= maximumPendingEvents, "pending events pile up");
    const std::shared_ptr<AppDelegate> delegate = delegate_.lock();
    require(static_cast<bool>(delegate) == model_.isAlive(),
            model_.isAlive() ? "the delegate has gone" : "something keeps the delegate alive");
    checkRegistrations();
    checkLog();
    checkRecord();
    if (delegate) {
      checkState(*delegate);
      checkFace();
      checkTapTest(*delegate);
    }
  }

  void checkState(const AppDelegate& delegate) {
    require(delegate.isEnabled() == model_.isEnabled(), "the preference is not the user's choice");
    require(delegate.lastApplyFailed() == model_.lastApplyFailed(), "lastApplyFailed is wrong");
    require(delegate.retryAttempts() == model_.retryAttempts(),
            "retryAttempts is " + std::to_string(delegate.retryAttempts()) + " in place of " +
                std::to_string(model_.retryAttempts()));
    const auto& status = delegate.cachedStatus();
    const auto& expected = model_.status();
    require(status.has_value() == expected.has_value(),
            "cachedStatus is there, or is not, wrongly");
    require(!status || (status->instantServices == expected->instant &&
                        status->defaultServices == expected->normal &&
                        status->otherServices == expected->other),
            "cachedStatus has wrong counts");
  }

  void checkFace() {
    const SimulatedStatusItemState& item = desktop_.systemStatusBar().item();
    const SymbolImage image = {model_.symbol(), "Zephlin", true};
    require(item.image == image, "the symbol is not " + quoted(image.name));
    require(item.toolTip == model_.toolTip(), "the tooltip is " + quoted(item.toolTip));
    if (menuWasOpened_) {
      const std::string line = desktop_.systemStatusBar().statusLine();
      require(line == model_.statusLine(),
              "the status line is " + quoted(line) + " in place of " + quoted(model_.statusLine()));
    }
  }

  void checkRecord() {
    const SimulatedUserDefaultsStorage& storage = desktop_.standardUserDefaults().storage();
    const auto& expected = model_.record();
    if (expected) {
      require(storage.boolean("lastApplyOK") == expected->isOK, "lastApplyOK is wrong");
      require(storage.number("lastApplyDate") == expected->date, "lastApplyDate is wrong");
    } else {
      require(!storage.contains("lastApplyOK"), "a result was recorded that never came");
    }
  }

  void checkLog() {
    const auto& entries = desktop_.log().entries();
    for (; logEntriesSeen_ < entries.size(); ++logEntriesSeen_) {
      const std::string& entry = entries[logEntriesSeen_];
      const bool isFailure = entry.starts_with("Zephlin: failed to apply override: ") ||
                             entry.starts_with("Zephlin: failed to restore default: ");
      failuresLogged_ += isFailure ? 1 : 0;
    }
    require(failuresLogged_ == model_.loggedFailures(), "failures and log entries do not agree");
  }

  void checkTapTest(AppDelegate& delegate) {
    // Making it is for the user; the checker only looks.
    if (desktop_.windows().windows().empty()) {
      return;
    }
    TapTestController& tapTest = delegate.tapTest();
    require(tapTest.pressCount() == presses_, "the press count is " +
                                                  std::to_string(tapTest.pressCount()) +
                                                  " in place of " + std::to_string(presses_));
    require(tapTest.toggleCount() >= toggles_, "the toggle count went down");
    toggles_ = tapTest.toggleCount();
  }

  void checkRegistrations() {
    const std::size_t alive = model_.isAlive() ? 1 : 0;
    const auto windows = desktop_.windows().windows();
    const std::size_t watching = !windows.empty() && windows.back()->isShown ? 1 : 0;
    require(windows.size() <= alive, "there are too many windows");
    require(desktop_.workspace().wakeObservers() == alive, "the number of wake observers is wrong");
    require(desktop_.hidDevices().appearedObservers() == alive,
            "the number of device observers is wrong");
    require(desktop_.dispatch().liveSerialQueues().size() == alive,
            "the number of serial queues is wrong");
    require(desktop_.updaters().live() == alive, "the number of updaters is wrong");
    require(desktop_.systemStatusBar().items().size() == alive,
            "the number of status items is wrong");
    require(desktop_.hidDevices().openInputs() <= watching, "too many inputs are open");
    const std::size_t polls = desktop_.dispatch().liveTimers().size() - alive;
    require(desktop_.eventTaps().openTaps() + polls == watching,
            "the number of toggle channels is wrong");
  }

  void require(bool condition, const std::string& what) {
    if (!condition) {
      throw ViolationFound{{desktop_.now(), what}};
    }
  }

  SimulatedDesktop& desktop_;
  OverrideModel& model_;
  std::weak_ptr<AppDelegate> delegate_;
  /// The first thing that was wrong on another thread than the main thread.
  std::string wrongCall_;
  std::size_t logEntriesSeen_ = 0;
  std::size_t failuresLogged_ = 0;
  std::int64_t presses_ = 0;
  std::int64_t toggles_ = 0;
  bool menuWasOpened_ = false;
};

}  // namespace zephlin
