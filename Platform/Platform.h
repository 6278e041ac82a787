#pragma once

#include <memory>

#include "Platform/Application.h"
#include "Platform/Dispatch.h"
#include "Platform/Keyboard.h"
#include "Platform/Services.h"
#include "Platform/StatusBar.h"
#include "Platform/Window.h"
#include "Platform/Workspace.h"

namespace zephlin {

/// All that the application asks of a desktop. The objects that it returns by reference or as
/// std::unique_ptr are used only while it lives. Main thread.
class Platform {
 public:
  virtual ~Platform() = default;
  virtual Dispatch& dispatch() = 0;
  virtual Clock& clock() = 0;
  virtual Application& application() = 0;
  virtual ProcessInfo& processInfo() = 0;
  virtual Workspace& workspace() = 0;
  virtual UserDefaults& standardUserDefaults() = 0;
  /// Work on other threads may keep it beyond the platform.
  virtual std::shared_ptr<SystemLog> systemLog() = 0;
  virtual StatusBar& systemStatusBar() = 0;
  virtual AlertPresenter& alerts() = 0;
  virtual WindowServer& windows() = 0;
  virtual HidDevices& hidDevices() = 0;
  virtual EventTaps& eventTaps() = 0;
  virtual LoginService& loginService() = 0;
  /// The updater has started when this returns.
  virtual std::unique_ptr<Updater> makeStartedUpdater() = 0;
};

/// This machine's desktop. It may change the process's arguments, which must outlive it. There is
/// one at a time. Main thread.
std::unique_ptr<Platform> makePlatform(int& argc, char** argv);

}  // namespace zephlin
