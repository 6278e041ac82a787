#include "Platform/Linux/LauncherActions.h"

#include <algorithm>
#include <array>

#include "Platform/Linux/LinuxApplication.h"
#include "Platform/Linux/StatusReporter.h"

namespace zephlin {

namespace {

void switchFeature(bool isOn, LinuxApplication& application, StatusReporter& reporter) {
  application.switchFeature(isOn);
  reporter.reportSwitch();
}

struct LauncherAction {
  const char* name;
  void (*perform)(LinuxApplication& application, StatusReporter& reporter);
};

constexpr std::array launcherActions{
    LauncherAction{"tap-test", [](LinuxApplication& application,
                                  StatusReporter& /*reporter*/) { application.reopen(); }},
    LauncherAction{"switch-on",
                   [](LinuxApplication& application, StatusReporter& reporter) {
                     switchFeature(true, application, reporter);
                   }},
    LauncherAction{"switch-off",
                   [](LinuxApplication& application, StatusReporter& reporter) {
                     switchFeature(false, application, reporter);
                   }},
    LauncherAction{"status", [](LinuxApplication& /*application*/,
                                StatusReporter& reporter) { reporter.report(); }},
};

const LauncherAction* actionNamed(const QString& name) {
  const auto* const found = std::find_if(
      launcherActions.begin(), launcherActions.end(),
      [&name](const LauncherAction& each) { return name == QLatin1String(each.name); });
  return found == launcherActions.end() ? nullptr : found;
}

}  // namespace

QString launcherActionIn(int argc, char** argv) {
  const QString option = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString();
  const QString name = option.startsWith("--") ? option.mid(2) : QString();
  return actionNamed(name) == nullptr ? QString() : name;
}

void performLauncherAction(const QString& name, LinuxApplication& application,
                           StatusReporter& reporter) {
  if (const LauncherAction* const action = actionNamed(name)) {
    action->perform(application, reporter);
  }
}

}  // namespace zephlin
