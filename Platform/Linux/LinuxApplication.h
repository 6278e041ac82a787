#pragma once

#include <QApplication>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "Platform/Application.h"

namespace zephlin {

/// The application is Qt's.
class LinuxApplication final : public Application {
 public:
  /// What the application asks of the rest of the desktop.
  struct Services {
    /// As Application::handOverToRunningInstance.
    std::function<bool()> handOverToRunningInstance;
    /// Makes the key equivalents of a menu work in the application's windows.
    std::function<void(std::shared_ptr<Menu>)> setMainMenu;
    /// Called after the delegate's applicationDidFinishLaunching().
    std::function<void()> hasLaunched;
    /// Called when the event loop has ended.
    std::function<void()> loopHasEnded;
  };

  /// Connects to the display, or runs without one (isDisplayed). Takes the launcher's activation
  /// token out of the environment.
  LinuxApplication(int& argc, char** argv);

  void setServices(Services services) { services_ = std::move(services); }
  [[nodiscard]] bool isDisplayed() const;
  /// What the launcher of this process handed over, or an empty text (ActivationToken.h).
  [[nodiscard]] const QString& activationToken() const { return activationToken_; }
  /// The action of the launcher that this process was started for, or an empty text
  /// (LauncherActions.h).
  [[nodiscard]] const QString& launcherAction() const { return launcherAction_; }
  /// Whether terminate() was called.
  [[nodiscard]] bool isTerminating() const { return isTerminating_; }
  /// The user has started the application again.
  void reopen();
  /// The user has switched the application's feature on or off in the launcher.
  void switchFeature(bool isOn);
  /// As ApplicationDelegate::applicationShouldReportStatus.
  void readStatus(std::function<void(const std::string& status)> report);

  void setDelegate(std::weak_ptr<ApplicationDelegate> delegate) override;
  /// Does nothing: Qt shows only the windows of any application.
  void becomeAccessory() override {}
  void setMainMenu(std::shared_ptr<Menu> menu) override;
  bool handOverToRunningInstance() override { return services_.handOverToRunningInstance(); }
  /// Does nothing: each window and alert comes to the front by itself.
  void activateIgnoringOtherApps() override {}
  void run() override;
  /// Returns.
  void terminate() override;

 private:
  // Before Qt, which looks into the environment too.
  QString activationToken_;
  QString launcherAction_;
  QApplication application_;
  std::weak_ptr<ApplicationDelegate> delegate_;
  Services services_;
  bool isTerminating_ = false;
};

class LinuxProcessInfo final : public ProcessInfo {
 public:
  [[nodiscard]] std::optional<std::string> environmentVariable(
      const std::string& name) const override;
  /// The folder of the running executable itself, not of a link to it. Empty if /proc is not
  /// mounted.
  [[nodiscard]] std::string mainBundlePath() const override;
};

}  // namespace zephlin
