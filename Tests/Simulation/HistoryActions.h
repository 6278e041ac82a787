#pragma once

#include <memory>
#include <sstream>
#include <string>

#include "Platform/Simulated/SimulatedDesktop.h"
#include "Tests/Simulation/HistoryChecker.h"
#include "Tests/Simulation/OverrideModel.h"
#include "Zephlin/AppDelegate.h"

namespace zephlin {

/// Carries out a history's actions, and announces their effects to the model and the checker:
///
///   plug [stubborn]      a keyboard; a stubborn one cannot be set
///   unplug               the keyboard that was plugged in first
///   attach               a device that is no keyboard
///   wake SECONDS         from a sleep of that wall time
///   jump SECONDS         of the wall clock
///   late SECONDS         delayed work and timers are, from now on
///   fault set|get exit STATUS|hang|launch|garbage|nonsense [NUMBER]
///                        for so many runs of the tool, or for good
///   clear-faults
///   open-menu, close-menu, click TITLE
///   tap, tap-lost        Caps Lock; a lost tap does not register
///   modifier             Shift goes down and comes up
///   taps|inputs allowed|refused
///   press TITLE          a button of the tap test's window
///   close-window
///   dismiss              the alert that is modal, which else goes by itself
///   login works|fails|needs-approval
///   destroy, launch      the application
class HistoryActions {
 public:
  HistoryActions(SimulatedDesktop& desktop, OverrideModel& model, HistoryChecker& checker);

  /// Does nothing if the action is not possible now. Throws std::invalid_argument if there is no
  /// such action.
  void perform(const std::string& action);

 private:
  using Handler = void (HistoryActions::*)(std::istringstream& arguments);
  static Handler handlerFor(const std::string& name);

  void plug(std::istringstream& arguments);
  void unplug(std::istringstream& arguments);
  void attach(std::istringstream& arguments);
  void wake(std::istringstream& arguments);
  void jump(std::istringstream& arguments);
  void late(std::istringstream& arguments);
  void fault(std::istringstream& arguments);
  void clearFaults(std::istringstream& arguments);
  void openMenu(std::istringstream& arguments);
  void closeMenu(std::istringstream& arguments);
  void click(std::istringstream& arguments);
  void tap(std::istringstream& arguments);
  void tapLost(std::istringstream& arguments);
  void modifier(std::istringstream& arguments);
  void tapsAllowed(std::istringstream& arguments);
  void inputsAllowed(std::istringstream& arguments);
  void press(std::istringstream& arguments);
  void closeWindow(std::istringstream& arguments);
  void dismiss(std::istringstream& arguments);
  void login(std::istringstream& arguments);
  void launch(std::istringstream& arguments);
  void destroy(std::istringstream& arguments);

  void tapCapsLock(bool registers);
  void expectClicked(const std::string& title);

  SimulatedDesktop& desktop_;
  OverrideModel& model_;
  HistoryChecker& checker_;
  std::shared_ptr<AppDelegate> delegate_;
};

}  // namespace zephlin
