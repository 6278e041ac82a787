#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "Platform/Menu.h"

namespace zephlin {

class ApplicationDelegate {
 public:
  virtual ~ApplicationDelegate() = default;
  /// Called once, on the main thread, when the event loop has begun.
  virtual void applicationDidFinishLaunching() = 0;
  /// Called on the main thread when the user has started the application again and that instance
  /// has handed over to this one. Never on macOS, where Launch Services starts an application once.
  virtual void applicationShouldHandleReopen() = 0;
  /// Called on the main thread when the user has switched the application's feature on or off from
  /// the desktop's launcher. Never on macOS, whose Dock offers no such actions for it.
  virtual void applicationShouldSwitch(bool isOn) = 0;
  /// Called on the main thread when the desktop shows the state in place of the status item.
  /// `report` gets it in one line, freshly read, later and on the main thread. Never on macOS.
  virtual void applicationShouldReportStatus(
      std::function<void(const std::string& status)> report) = 0;
};

/// The one application of the process. Main thread.
class Application {
 public:
  virtual ~Application() = default;
  /// The delegate is not owned.
  virtual void setDelegate(std::weak_ptr<ApplicationDelegate> delegate) = 0;
  /// From now on the application has no Dock icon and shows no menu bar of its own.
  virtual void becomeAccessory() = 0;
  /// The menu is not shown by an accessory; its key equivalents work in the application's windows.
  virtual void setMainMenu(std::shared_ptr<Menu> menu) = 0;
  /// Asks the user's running instance to come forward. False if there is none; this process is the
  /// instance then.
  virtual bool handOverToRunningInstance() = 0;
  /// Comes to the front of all other applications.
  virtual void activateIgnoringOtherApps() = 0;
  /// Handles events until the application terminates.
  virtual void run() = 0;
  /// Ends the application without calling it first. May not return.
  virtual void terminate() = 0;
};

/// What the process was started with. Main thread.
class ProcessInfo {
 public:
  virtual ~ProcessInfo() = default;
  /// Absent if the variable is not set.
  [[nodiscard]] virtual std::optional<std::string> environmentVariable(
      const std::string& name) const = 0;
  /// The path of the bundle that the program runs from, or the folder of a bare executable.
  [[nodiscard]] virtual std::string mainBundlePath() const = 0;
};

}  // namespace zephlin
