#pragma once

#include <memory>

#include "Platform/Linux/LinuxApplication.h"
#include "Platform/Linux/LinuxDispatch.h"
#include "Platform/Linux/Session/AutostartLoginService.h"
#include "Platform/Linux/Session/JsonUserDefaults.h"
#include "Platform/Linux/Session/LinuxSystemLog.h"
#include "Platform/Linux/Session/RunningInstance.h"
#include "Platform/Linux/Session/SessionEnd.h"
#include "Platform/Linux/StatusItem/QtStatusBar.h"
#include "Platform/Linux/StatusReporter.h"
#include "Platform/Linux/Watching/LinuxKeyboard.h"
#include "Platform/Linux/Watching/LogindWorkspace.h"
#include "Platform/Linux/Windows/KeyEquivalents.h"
#include "Platform/Linux/Windows/QtWindowServer.h"
#include "Platform/Platform.h"

namespace zephlin {

/// A Linux desktop over Qt, D-Bus, X11 or Wayland, and the keyboard service.
class LinuxPlatform final : public Platform {
 public:
  /// As makePlatform.
  LinuxPlatform(int& argc, char** argv);

  Dispatch& dispatch() override { return dispatch_; }
  Clock& clock() override { return clock_; }
  Application& application() override { return application_; }
  ProcessInfo& processInfo() override { return processInfo_; }
  Workspace& workspace() override { return workspace_; }
  UserDefaults& standardUserDefaults() override { return userDefaults_; }
  std::shared_ptr<SystemLog> systemLog() override { return systemLog_; }
  StatusBar& systemStatusBar() override { return statusBar_; }
  AlertPresenter& alerts() override { return alerts_; }
  WindowServer& windows() override { return windows_; }
  HidDevices& hidDevices() override { return hidDevices_; }
  EventTaps& eventTaps() override { return eventTaps_; }
  LoginService& loginService() override { return loginService_; }
  std::unique_ptr<Updater> makeStartedUpdater() override;

 private:
  bool handOverToRunningInstance();
  void answer(const InstanceRequest& request);
  void leaveWork();

  std::shared_ptr<LinuxSystemLog> systemLog_ = std::make_shared<LinuxSystemLog>();
  QtMessages qtMessages_;
  LinuxApplication application_;
  LinuxDispatch dispatch_;
  LinuxClock clock_;
  LinuxProcessInfo processInfo_;
  LogindWorkspace workspace_;
  JsonUserDefaults userDefaults_;
  QtStatusBar statusBar_;
  QtAlertPresenter alerts_;
  StatusReporter statusReporter_;
  QtWindowServer windows_;
  LinuxHidDevices hidDevices_;
  LinuxEventTaps eventTaps_;
  AutostartLoginService loginService_;
  RunningInstance instance_;
  QuitSignals quitSignals_;
  std::unique_ptr<KeyEquivalents> keyEquivalents_;
};

}  // namespace zephlin
