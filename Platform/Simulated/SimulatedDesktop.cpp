#include "Platform/Simulated/SimulatedDesktop.h"

#include <system_error>
#include <utility>

#include "ZephlinCore/ChildProcessRunner.h"

namespace zephlin {

namespace {

SimulatedDesktop* currentDesktop = nullptr;

}  // namespace

SimulatedDesktop::SimulatedDesktop(std::shared_ptr<SimulatedUserDefaultsStorage> storage)
    : userDefaults_(std::move(storage)), previous_(std::exchange(currentDesktop, this)) {
  keyboards_.add();
  loop_->addTurnObserver([this] { windows_.displayIfNeeded(); });
}

SimulatedDesktop::~SimulatedDesktop() {
  // What still runs, or is dropped, may use every part of the desktop.
  loop_->shutDown();
  currentDesktop = previous_;
}

SimulatedDesktop* SimulatedDesktop::current() {
  return currentDesktop;
}

std::optional<double> SimulatedDesktop::nextDeadline() const {
  const std::optional<VirtualTicks> deadline = loop_->nextDeadline();
  return deadline ? std::optional(secondsFromTicks(*deadline)) : std::nullopt;
}

void SimulatedDesktop::after(double seconds, std::function<void()> action) {
  loop_->schedule(loop_->now() + ticksFromSeconds(seconds), VirtualLoop::Lane::Main,
                  std::move(action));
}

void SimulatedDesktop::sleepAndWake(double seconds) {
  clock_.jump(seconds);
  workspace_.announceDidWake();
}

SimulatedKeyboards::Number SimulatedDesktop::plugKeyboard(bool isStubborn) {
  const SimulatedKeyboards::Number number = keyboards_.add(isStubborn);
  hidDevices_.announceAppeared();
  return number;
}

std::optional<SimulatedKeyboards::Number> SimulatedDesktop::attachDevice(bool isKeyboard) {
  if (isKeyboard) {
    return plugKeyboard();
  }
  hidDevices_.announceAppeared();
  return std::nullopt;
}

/// The seam's other body: no process is run.
ChildProcessResult runChildProcess(const std::string& executable,
                                   std::span<const std::string> arguments,
                                   std::chrono::duration<double> timeLimit) {
  SimulatedDesktop* const desktop = SimulatedDesktop::current();
  if (desktop == nullptr) {
    throw std::system_error(std::make_error_code(std::errc::no_such_process), executable);
  }
  return desktop->hidutil().run(executable, arguments, timeLimit);
}

}  // namespace zephlin
