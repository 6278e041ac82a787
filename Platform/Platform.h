#pragma once

#include <memory>

#include "Platform/Alert.h"
#include "Platform/Application.h"
#include "Platform/Dispatch.h"
#include "Platform/EventTap.h"
#include "Platform/HidDevices.h"
#include "Platform/LoginService.h"
#include "Platform/StatusBar.h"
#include "Platform/SystemLog.h"
#include "Platform/Updater.h"
#include "Platform/UserDefaults.h"
#include "Platform/Views.h"
#include "Platform/Workspace.h"

namespace zephlin {

/// All that the application asks of a desktop. It outlives whoever uses it. Main thread.
class Platform {
 public:
  virtual ~Platform() = default;
  virtual Dispatch& dispatch() = 0;
  virtual Clock& clock() = 0;
  virtual Application& application() = 0;
  virtual ProcessInfo& processInfo() = 0;
  virtual Workspace& workspace() = 0;
  virtual UserDefaults& standardUserDefaults() = 0;
  /// The one part that any thread may use.
  virtual SystemLog& systemLog() = 0;
  virtual StatusBar& systemStatusBar() = 0;
  virtual AlertPresenter& alerts() = 0;
  virtual WindowServer& windows() = 0;
  virtual HidDevices& hidDevices() = 0;
  virtual EventTaps& eventTaps() = 0;
  virtual LoginService& loginService() = 0;
  /// The updater has started when this returns.
  virtual std::unique_ptr<Updater> makeStartedUpdater() = 0;
};

/// This machine's desktop, for the process's arguments, which it may change and which outlive it.
/// One at a time. Main thread.
std::unique_ptr<Platform> makePlatform(int& argc, char** argv);

}  // namespace zephlin
