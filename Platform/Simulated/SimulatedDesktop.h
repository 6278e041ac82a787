#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>

#include "Platform/Platform.h"
#include "Platform/Simulated/SimulatedApplication.h"
#include "Platform/Simulated/SimulatedDispatch.h"
#include "Platform/Simulated/SimulatedHidutil.h"
#include "Platform/Simulated/SimulatedInput.h"
#include "Platform/Simulated/SimulatedKeyboards.h"
#include "Platform/Simulated/SimulatedServices.h"
#include "Platform/Simulated/SimulatedStatusBar.h"
#include "Platform/Simulated/SimulatedWindows.h"
#include "Platform/Simulated/VirtualLoop.h"

namespace zephlin {

/// A whole desktop in memory, under a virtual clock, with one user and any number of keyboards.
///
/// The thread that makes it is its main thread and the only one that may use it; work of serial
/// queues runs by turns. What a user or a device does is done from outside the loop or from an
/// event. The newest desktop is the one whose keyboards `runChildProcess` reaches.
class SimulatedDesktop final : public Platform {
 public:
  /// With one keyboard plugged in, unset. Settings are empty, or those of an earlier desktop.
  explicit SimulatedDesktop(std::shared_ptr<SimulatedUserDefaultsStorage> storage =
                                std::make_shared<SimulatedUserDefaultsStorage>());
  SimulatedDesktop(const SimulatedDesktop&) = delete;
  SimulatedDesktop& operator=(const SimulatedDesktop&) = delete;
  ~SimulatedDesktop() override;

  SimulatedDispatch& dispatch() override { return dispatch_; }
  SimulatedClock& clock() override { return clock_; }
  SimulatedApplication& application() override { return application_; }
  SimulatedProcessInfo& processInfo() override { return processInfo_; }
  SimulatedWorkspace& workspace() override { return workspace_; }
  SimulatedUserDefaults& standardUserDefaults() override { return userDefaults_; }
  std::shared_ptr<SystemLog> systemLog() override { return systemLog_; }
  SimulatedStatusBar& systemStatusBar() override { return statusBar_; }
  SimulatedAlerts& alerts() override { return alerts_; }
  SimulatedWindows& windows() override { return windows_; }
  SimulatedHidDevices& hidDevices() override { return hidDevices_; }
  SimulatedEventTaps& eventTaps() override { return eventTaps_; }
  SimulatedLoginService& loginService() override { return loginService_; }
  std::unique_ptr<Updater> makeStartedUpdater() override { return updaters_.makeStarted(); }

  SimulatedSystemLog& log() { return *systemLog_; }
  VirtualLoop& loop() { return *loop_; }
  SimulatedKeyboards& keyboards() { return keyboards_; }
  SimulatedHidutil& hidutil() { return hidutil_; }
  SimulatedCapsLockKey& capsLockKey() { return capsLockKey_; }
  SimulatedUpdaters& updaters() { return updaters_; }

  /// Time. All in seconds of monotonic time, which starts at 0.
  [[nodiscard]] double now() const { return secondsFromTicks(loop_->now()); }
  void runFor(double seconds) { loop_->runUntil(loop_->now() + ticksFromSeconds(seconds)); }
  void runUntil(double time) { loop_->runUntil(ticksFromSeconds(time)); }
  void runUntilIdleNow() { loop_->runUntilIdleNow(); }
  bool step() { return loop_->step(); }
  [[nodiscard]] std::optional<double> nextDeadline() const;
  [[nodiscard]] bool isOnMainThread() const { return loop_->isOnMainThread(); }
  /// Does something at a time from now, on the main thread. Not subject to lateness.
  void after(double seconds, std::function<void()> action);
  [[nodiscard]] WallTime wallTime() const { return clock_.now(); }
  void setWallTime(WallTime time) { clock_.setWallTime(time); }
  /// Wall time passes without monotonic time; then the did-wake observers are called, through the
  /// main queue.
  void sleepAndWake(double seconds);

  /// Devices. Attaching one calls the observers through the main queue.
  SimulatedKeyboards::Number plugKeyboard(bool isStubborn = false);
  bool unplugKeyboard(SimulatedKeyboards::Number number) { return keyboards_.remove(number); }
  std::optional<SimulatedKeyboards::Number> attachDevice(bool isKeyboard);

  /// The user's hands.
  void pressCapsLock(bool registers = true) { capsLockKey_.press(registers); }
  void releaseCapsLock() { capsLockKey_.release(); }
  void tapCapsLock(bool registers = true) { capsLockKey_.tap(registers); }
  void pressModifier(ModifierFlags flags) { capsLockKey_.pressModifier(flags); }
  bool openMenu() { return statusBar_.openMenu(); }
  void closeMenu() { statusBar_.closeMenu(); }
  bool click(const std::string& title) { return statusBar_.click(title); }
  std::optional<std::string> pressKeyEquivalent(const std::string& key,
                                                ModifierFlags flags = modifierCommand) {
    return application_.pressKeyEquivalent(key, flags);
  }
  void dismissAlert() { alerts_.dismissAlert(); }
  void dismissAlertAfter(double seconds) { alerts_.dismissAlertAfter(seconds); }

  /// The newest desktop that exists, or null.
  static SimulatedDesktop* current();

 private:
  std::shared_ptr<VirtualLoop> loop_ = std::make_shared<VirtualLoop>();
  SimulatedTracking tracking_;
  SimulatedDispatch dispatch_{loop_};
  SimulatedClock clock_{*loop_};
  SimulatedApplication application_{*loop_};
  SimulatedProcessInfo processInfo_;
  SimulatedWorkspace workspace_{dispatch_.mainQueue()};
  SimulatedUserDefaults userDefaults_;
  std::shared_ptr<SimulatedSystemLog> systemLog_ = std::make_shared<SimulatedSystemLog>();
  SimulatedStatusBar statusBar_{application_, tracking_};
  SimulatedAlerts alerts_{*loop_, tracking_};
  SimulatedWindows windows_;
  SimulatedHidDevices hidDevices_{dispatch_.mainQueue(), tracking_, clock_};
  SimulatedEventTaps eventTaps_{tracking_, clock_};
  SimulatedLoginService loginService_;
  SimulatedUpdaters updaters_;
  SimulatedKeyboards keyboards_;
  SimulatedHidutil hidutil_{*loop_, keyboards_};
  SimulatedCapsLockKey capsLockKey_{*loop_, hidDevices_, eventTaps_};
  SimulatedDesktop* previous_;
};

}  // namespace zephlin
