#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "Platform/Simulated/SimulatedDesktop.h"
#include "Tests/Simulation/HistoryRunner.h"
#include "Tests/Simulation/OverrideModel.h"
#include "Zephlin/AppDelegate.h"

namespace zephlin {

/// Thrown through the loop when something is wrong. No std::exception, which the application may
/// handle.
struct ViolationFound {
  Violation violation;
};

/// Compares a desktop with what it should be, after each turn of its loop.
class HistoryChecker {
 public:
  /// The desktop outlives the checker's last turn.
  HistoryChecker(SimulatedDesktop& desktop, OverrideModel& model);
  HistoryChecker(const HistoryChecker&) = delete;
  HistoryChecker& operator=(const HistoryChecker&) = delete;
  ~HistoryChecker();

  /// The application to look at, until the next call. Not owned.
  void watch(const std::shared_ptr<AppDelegate>& delegate);
  /// The counts of the tap test may begin anew.
  void expectCountsCleared();
  /// A press was delivered to the tap test.
  void expectPress() { ++presses_; }
  void checkMenuAtOpening();
  /// Every keyboard has the value of the user's choice.
  void checkSettled();

 private:
  void checkTurn();
  void checkCalls();
  void checkAtRest();
  void checkState(const AppDelegate& delegate);
  void checkFace();
  void checkRecord();
  void checkLog();
  void checkTapTest(AppDelegate& delegate);
  void checkRegistrations();
  void require(bool condition, const std::string& what);

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
