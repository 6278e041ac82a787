#pragma once

#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>

#include "Platform/Simulated/SimulatedDesktop.h"
#include "Tests/Simulation/HistoryChecker.h"
#include "Tests/Simulation/OverrideModel.h"
#include "Zephlin/AppDelegate.h"

namespace zephlin {

inline std::string restOf(std::istringstream& arguments) {
  std::string rest;
  std::getline(arguments >> std::ws, rest);
  return rest;
}

template <typename Value>
inline Value argumentOf(std::istringstream& arguments) {
  Value value{};
  if (!(arguments >> value)) {
    throw std::invalid_argument("an argument is missing: " + arguments.str());
  }
  return value;
}

inline HidutilFault::Kind faultFrom(std::istringstream& arguments) {
  const auto kind = argumentOf<std::string>(arguments);
  if (kind == "exit") {
    return HidutilFault::Exit{argumentOf<int>(arguments), "hidutil: not permitted\n"};
  }
  if (kind == "hang") {
    return HidutilFault::Hang{};
  }
  if (kind == "launch") {
    return HidutilFault::LaunchFailure{};
  }
  if (kind == "garbage") {
    return HidutilFault::Output{outputThatIsNotUtf8()};
  }
  if (kind == "nonsense") {
    return HidutilFault::Output{outputOfNonsenseRows()};
  }
  throw std::invalid_argument("no fault: " + kind);
}

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
  HistoryActions(SimulatedDesktop& desktop, OverrideModel& model, HistoryChecker& checker)
      : desktop_(desktop), model_(model), checker_(checker) {
    constexpr double userReadsFor = 4;
    desktop_.alerts().onShown = [this] { desktop_.dismissAlertAfter(userReadsFor); };
  }

  /// Does nothing if the action is not possible now. Throws std::invalid_argument if there is no
  /// such action.
  void perform(const std::string& action) {
    constexpr std::size_t manyCalls = 10'000;
    if (desktop_.hidutil().runningCalls() == 0 && desktop_.hidutil().calls().size() > manyCalls) {
      desktop_.hidutil().forgetCalls();
    }
    model_.advanceTo(desktop_.loop().now());
    std::istringstream arguments(action);
    const Handler handler = handlerFor(argumentOf<std::string>(arguments));
    (this->*handler)(arguments);
  }

 private:
  using Handler = void (HistoryActions::*)(std::istringstream& arguments);
  static Handler handlerFor(const std::string& name) {
    static const std::map<std::string, Handler> handlers = {
        {"plug", &HistoryActions::plug},          {"unplug", &HistoryActions::unplug},
        {"attach", &HistoryActions::attach},      {"wake", &HistoryActions::wake},
        {"jump", &HistoryActions::jump},          {"late", &HistoryActions::late},
        {"fault", &HistoryActions::fault},        {"clear-faults", &HistoryActions::clearFaults},
        {"open-menu", &HistoryActions::openMenu}, {"close-menu", &HistoryActions::closeMenu},
        {"click", &HistoryActions::click},        {"tap", &HistoryActions::tap},
        {"tap-lost", &HistoryActions::tapLost},   {"modifier", &HistoryActions::modifier},
        {"taps", &HistoryActions::tapsAllowed},   {"inputs", &HistoryActions::inputsAllowed},
        {"press", &HistoryActions::press},        {"close-window", &HistoryActions::closeWindow},
        {"dismiss", &HistoryActions::dismiss},    {"login", &HistoryActions::login},
        {"launch", &HistoryActions::launch},      {"destroy", &HistoryActions::destroy},
    };
    const auto found = handlers.find(name);
    if (found == handlers.end()) {
      throw std::invalid_argument("no action: " + name);
    }
    return found->second;
  }

  void plug(std::istringstream& arguments) {
    constexpr std::size_t maximumKeyboards = 8;
    if (desktop_.keyboards().count() < maximumKeyboards) {
      desktop_.plugKeyboard(restOf(arguments) == "stubborn");
      model_.deviceAppeared();
    }
  }

  void unplug(std::istringstream&) {
    const auto& keyboards = desktop_.keyboards().all();
    if (!keyboards.empty()) {
      desktop_.unplugKeyboard(keyboards.begin()->first);
    }
  }

  void attach(std::istringstream&) {
    desktop_.attachDevice(false);
    model_.deviceAppeared();
  }

  void wake(std::istringstream& arguments) {
    desktop_.sleepAndWake(argumentOf<double>(arguments));
    model_.woke();
  }

  void jump(std::istringstream& arguments) { desktop_.clock().jump(argumentOf<double>(arguments)); }

  void late(std::istringstream& arguments) {
    const auto seconds = argumentOf<double>(arguments);
    desktop_.dispatch().lateness().setExactly(Seconds{seconds});
    model_.setLateness(ticksFromSeconds(seconds));
  }

  void fault(std::istringstream& arguments) {
    const auto call = argumentOf<std::string>(arguments);
    HidutilFault::Kind kind = faultFrom(arguments);
    int number = 0;
    const std::optional<int> times = arguments >> number ? std::optional(number) : std::nullopt;
    if (call == "set") {
      desktop_.hidutil().failSets(std::move(kind), times);
    } else {
      desktop_.hidutil().failGets(std::move(kind), times);
    }
  }

  void clearFaults(std::istringstream&) { desktop_.hidutil().clearFaults(); }

  void openMenu(std::istringstream&) {
    if (desktop_.openMenu()) {
      model_.menuOpened();
      checker_.checkMenuAtOpening();
    }
  }

  void closeMenu(std::istringstream&) { desktop_.closeMenu(); }

  void click(std::istringstream& arguments) {
    const std::string title = restOf(arguments);
    const auto item = desktop_.systemStatusBar().menuItem(title);
    if (desktop_.systemStatusBar().isMenuOpen() && item && item->isEnabled) {
      expectClicked(title);
      desktop_.click(title);
    }
  }

  void tap(std::istringstream&) { tapCapsLock(true); }

  void tapLost(std::istringstream&) { tapCapsLock(false); }

  void modifier(std::istringstream&) {
    desktop_.pressModifier(modifierShift);
    desktop_.pressModifier(0);
  }

  void tapsAllowed(std::istringstream& arguments) {
    desktop_.eventTaps().setAllowed(restOf(arguments) == "allowed");
  }

  void inputsAllowed(std::istringstream& arguments) {
    constexpr std::int32_t notPermitted = static_cast<std::int32_t>(0xe00002e2);
    const bool allowed = restOf(arguments) == "allowed";
    desktop_.hidDevices().failOpening(allowed ? std::nullopt : std::optional(notPermitted));
  }

  void press(std::istringstream& arguments) {
    const auto windows = desktop_.windows().windows();
    if (!windows.empty() && windows.back()->pressButton(restOf(arguments))) {
      checker_.expectCountsCleared();
    }
  }

  void closeWindow(std::istringstream&) {
    const auto windows = desktop_.windows().windows();
    if (!windows.empty()) {
      windows.back()->close();
    }
  }

  void dismiss(std::istringstream&) { desktop_.dismissAlert(); }

  void login(std::istringstream& arguments) {
    const std::string how = restOf(arguments);
    desktop_.loginService().failWith(how == "fails" ? std::optional<std::string>("not permitted")
                                                    : std::nullopt);
    desktop_.loginService().setNeedsApproval(how == "needs-approval");
  }

  void launch(std::istringstream&) {
    // A process does not begin before the runs of the former one are over.
    if (delegate_ || desktop_.hidutil().runningCalls() > 0) {
      return;
    }
    delegate_ = std::make_shared<AppDelegate>(desktop_);
    checker_.watch(delegate_);
    model_.launch();
    desktop_.application().setDelegate(delegate_);
    delegate_->applicationDidFinishLaunching();
  }

  void destroy(std::istringstream&) {
    // Whoever shows an alert holds the delegate.
    if (!delegate_ || desktop_.alerts().isModal()) {
      return;
    }
    desktop_.closeMenu();
    model_.destroy();
    delegate_.reset();
  }

  void tapCapsLock(bool registers) {
    const bool isHeldBack = desktop_.systemStatusBar().isMenuOpen() || desktop_.alerts().isModal();
    if (desktop_.hidDevices().openInputs() > 0 && !isHeldBack) {
      checker_.expectPress();
    }
    desktop_.tapCapsLock(registers);
  }

  void expectClicked(const std::string& title) {
    if (title == "Instant Caps Lock") {
      model_.setEnabled(!model_.isEnabled());
    } else if (title == "Re-apply Now") {
      model_.reapplyClicked();
    } else if (title == "Tap Test\u2026") {
      checker_.expectCountsCleared();
    }
  }

  SimulatedDesktop& desktop_;
  OverrideModel& model_;
  HistoryChecker& checker_;
  std::shared_ptr<AppDelegate> delegate_;
};

}  // namespace zephlin
