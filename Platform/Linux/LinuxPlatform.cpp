#include "Platform/Linux/LinuxPlatform.h"

#include <cstdlib>
#include <utility>

#include "Platform/Linux/LauncherActions.h"
#include "Platform/Linux/LinuxUpdater.h"
#include "Platform/Linux/Session/ConfigurationFolder.h"
#include "Platform/Linux/Windows/ActivationToken.h"

namespace zephlin {

namespace {

bool holdsInputBack() {
  return QApplication::activeModalWidget() != nullptr ||
         QApplication::activePopupWidget() != nullptr;
}

}  // namespace

LinuxPlatform::LinuxPlatform(int& argc, char** argv)
    : qtMessages_(*systemLog_),
      application_(argc, argv),
      userDefaults_(defaultsPath(), *systemLog_),
      statusBar_([this] { return application_.isTerminating(); },
                 [this](bool isInTray) { statusReporter_.trayChanged(isInTray); }),
      statusReporter_(application_, alerts_),
      hidDevices_(currentWindowSystem(), holdsInputBack),
      eventTaps_(currentWindowSystem(), holdsInputBack),
      loginService_(QApplication::applicationFilePath().toStdString(), *systemLog_),
      instance_(*systemLog_, [this](const InstanceRequest& request) { answer(request); }),
      quitSignals_([this] { application_.terminate(); }) {
  takeNoPartInSessions();
  if (!application_.isDisplayed()) {
    systemLog_->log(
        "Zephlin: no display, so there is no status item; start it in a desktop session to have "
        "one");
  }
  application_.setServices(
      {.handOverToRunningInstance = [this] { return handOverToRunningInstance(); },
       .setMainMenu =
           [this](std::shared_ptr<Menu> menu) {
             keyEquivalents_ = std::make_unique<KeyEquivalents>(
                 std::move(menu), [this] { application_.terminate(); });
           },
       .hasLaunched =
           [this] {
             performLauncherAction(application_.launcherAction(), application_, statusReporter_);
           },
       .loopHasEnded = [this] { leaveWork(); }});
}

bool LinuxPlatform::handOverToRunningInstance() {
  if (!instance_.becomeTheInstance({.action = application_.launcherAction(),
                                    .activationToken = application_.activationToken()})) {
    return true;
  }
  setActivationToken(application_.activationToken());
  return false;
}

void LinuxPlatform::answer(const InstanceRequest& request) {
  setActivationToken(request.activationToken);
  if (request.action.isEmpty()) {
    application_.reopen();
  } else {
    performLauncherAction(request.action, application_, statusReporter_);
  }
}

std::unique_ptr<Updater> LinuxPlatform::makeStartedUpdater() {
  return std::make_unique<LinuxUpdater>(alerts_);
}

// Waiting for a run of hidutil that hangs would keep the process alive without its icon. Everything
// that has to last is in files by now.
void LinuxPlatform::leaveWork() {
  statusReporter_.withdraw();
  if (!dispatch_.abandonSerialQueues()) {
    std::_Exit(EXIT_SUCCESS);
  }
}

std::unique_ptr<Platform> makePlatform(int& argc, char** argv) {
  return std::make_unique<LinuxPlatform>(argc, argv);
}

}  // namespace zephlin
