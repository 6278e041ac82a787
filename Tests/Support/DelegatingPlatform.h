#pragma once

#include <memory>

#include "Platform/Platform.h"

namespace zephlin::test {

/// A desktop of which a test replaces parts. It owns the desktop, unless `Desktop` is a reference.
template <typename Desktop>
class DelegatingPlatform : public Platform {
 public:
  template <typename... Arguments>
  explicit DelegatingPlatform(Arguments&... arguments) : desktop_(arguments...) {}

  Dispatch& dispatch() override { return desktop_.dispatch(); }
  Clock& clock() override { return desktop_.clock(); }
  Application& application() override { return desktop_.application(); }
  ProcessInfo& processInfo() override { return desktop_.processInfo(); }
  Workspace& workspace() override { return desktop_.workspace(); }
  UserDefaults& standardUserDefaults() override { return desktop_.standardUserDefaults(); }
  std::shared_ptr<SystemLog> systemLog() override { return desktop_.systemLog(); }
  StatusBar& systemStatusBar() override { return desktop_.systemStatusBar(); }
  AlertPresenter& alerts() override { return desktop_.alerts(); }
  WindowServer& windows() override { return desktop_.windows(); }
  HidDevices& hidDevices() override { return desktop_.hidDevices(); }
  EventTaps& eventTaps() override { return desktop_.eventTaps(); }
  LoginService& loginService() override { return desktop_.loginService(); }
  std::unique_ptr<Updater> makeStartedUpdater() override { return desktop_.makeStartedUpdater(); }

 protected:
  Desktop desktop_;
};

}  // namespace zephlin::test
