#include <memory>

#include "Platform/Platform.h"
#import "Platform/macOS/MacApplication.h"
#import "Platform/macOS/MacDispatch.h"
#import "Platform/macOS/MacKeyboard.h"
#import "Platform/macOS/MacMenu.h"
#import "Platform/macOS/MacServices.h"
#import "Platform/macOS/MacUpdater.h"
#import "Platform/macOS/NativeViews.h"
#import "Platform/macOS/Retained.h"

namespace zephlin {

namespace {

/// The frameworks of macOS 13 and later.
class MacPlatform final : public Platform {
 public:
  Dispatch& dispatch() override { return dispatch_; }
  Clock& clock() override { return clock_; }
  Application& application() override { return application_; }
  ProcessInfo& processInfo() override { return processInfo_; }
  Workspace& workspace() override { return workspace_; }
  UserDefaults& standardUserDefaults() override { return userDefaults_; }
  std::shared_ptr<SystemLog> systemLog() override { return std::make_shared<MacSystemLog>(); }
  StatusBar& systemStatusBar() override { return statusBar_; }
  AlertPresenter& alerts() override { return alerts_; }
  WindowServer& windows() override { return windows_; }
  HidDevices& hidDevices() override { return hidDevices_; }
  EventTaps& eventTaps() override { return eventTaps_; }
  LoginService& loginService() override { return loginService_; }
  std::unique_ptr<Updater> makeStartedUpdater() override { return makeMacUpdater(); }

 private:
  /// For what is made before the event loop begins, which has pools of its own.
  AutoreleasePool pool_;
  MacDispatch dispatch_;
  MacClock clock_;
  MacApplication application_;
  MacProcessInfo processInfo_;
  MacWorkspace workspace_;
  MacUserDefaults userDefaults_;
  MacStatusBar statusBar_;
  MacAlerts alerts_;
  MacWindows windows_;
  MacHidDevices hidDevices_;
  MacEventTaps eventTaps_;
  MacLoginService loginService_;
};

}  // namespace

// AppKit reads the arguments by itself.
std::unique_ptr<Platform> makePlatform(int& argc, char** argv) {
  (void)argc;
  (void)argv;
  return std::make_unique<MacPlatform>();
}

}  // namespace zephlin
