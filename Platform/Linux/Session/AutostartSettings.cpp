#include "Platform/Linux/Session/AutostartSettings.h"

#include <QProcess>
#include <QStandardPaths>
#include <QStringList>
#include <vector>

namespace zephlin {

namespace {

struct SettingsProgram {
  QString desktop;
  QString program;
  QStringList arguments;
};

/// By desktop, the better one first.
const std::vector<SettingsProgram>& settingsPrograms() {
  static const std::vector<SettingsProgram> programs = {
      {"XFCE", "xfce4-session-settings", {}},
      {"KDE", "kcmshell6", {"kcm_autostart"}},
      {"KDE", "kcmshell5", {"kcm_autostart"}},
      {"KDE", "systemsettings", {"kcm_autostart"}},
      {"GNOME", "gnome-tweaks", {}},
      {"GNOME", "gnome-session-properties", {}},
      {"Unity", "gnome-session-properties", {}},
      {"MATE", "mate-session-properties", {}},
      {"X-Cinnamon", "cinnamon-settings", {"startup"}},
      {"LXQt", "lxqt-config-session", {}},
      {"LXDE", "lxsession-edit", {}},
  };
  return programs;
}

}  // namespace

bool openAutostartSettings(const QString& currentDesktop) {
  for (const QString& desktop : currentDesktop.split(':')) {
    for (const SettingsProgram& each : settingsPrograms()) {
      const QString path =
          each.desktop == desktop ? QStandardPaths::findExecutable(each.program) : QString();
      if (!path.isEmpty() && QProcess::startDetached(path, each.arguments)) {
        return true;
      }
    }
  }
  return false;
}

}  // namespace zephlin
