#include "Platform/Linux/Session/AutostartLoginService.h"

#include <unistd.h>

#include <QProcess>
#include <QStandardPaths>
#include <QString>
#include <QStringList>
#include <algorithm>
#include <array>
#include <cerrno>
#include <sstream>
#include <system_error>
#include <utility>
#include <vector>

#include "Platform/Linux/Session/ConfigurationFolder.h"
#include "Platform/Linux/Session/DesktopEntry.h"
#include "Platform/Linux/Session/FileReplacement.h"

namespace zephlin {

namespace {

constexpr const char* entryName = "/autostart/com.quorvenel.zephlin.desktop";
/// Marks an entry that was hidden here, not switched off by the user.
constexpr const char* unregisteredKey = "X-Zephlin-Unregistered";

struct SettingsProgram {
  const char* desktop;
  const char* program;
  const char* argument = nullptr;
};

/// What shows the user what starts at login, by desktop; the better program first.
constexpr std::array settingsPrograms{
    SettingsProgram{"XFCE", "xfce4-session-settings"},
    SettingsProgram{"KDE", "kcmshell6", "kcm_autostart"},
    SettingsProgram{"KDE", "kcmshell5", "kcm_autostart"},
    SettingsProgram{"KDE", "systemsettings", "kcm_autostart"},
    SettingsProgram{"GNOME", "gnome-tweaks"},
    SettingsProgram{"GNOME", "gnome-session-properties"},
    SettingsProgram{"Unity", "gnome-session-properties"},
    SettingsProgram{"MATE", "mate-session-properties"},
    SettingsProgram{"X-Cinnamon", "cinnamon-settings", "startup"},
    SettingsProgram{"LXQt", "lxqt-config-session"},
    SettingsProgram{"LXDE", "lxsession-edit"},
};

std::string userEntryPath() {
  return configurationFolder() + entryName;
}

/// The names of this desktop, the most specific first.
QStringList currentDesktops() {
  return qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':', Qt::SkipEmptyParts);
}

bool contains(const std::vector<std::string>& names, const QString& name) {
  return std::find(names.begin(), names.end(), name.toStdString()) != names.end();
}

/// The first of the desktop's names that is in one of the entry's lists decides.
bool isForThisDesktop(const DesktopEntry& entry) {
  const auto only = entry.list("OnlyShowIn");
  const auto never = entry.list("NotShowIn");
  for (const QString& name : currentDesktops()) {
    if (contains(only, name)) {
      return true;
    }
    if (contains(never, name)) {
      return false;
    }
  }
  return only.empty();
}

bool canBeTried(const DesktopEntry& entry) {
  const auto program = entry.value("TryExec");
  return !program || program->empty() ||
         !QStandardPaths::findExecutable(QString::fromStdString(*program)).isEmpty();
}

/// An entry that the desktop starts is enabled; one that is switched off, for this desktop or for
/// all, requires approval; one without a command registers nothing.
LoginServiceStatus statusOf(const DesktopEntry& entry) {
  // A hidden entry need not hold anything else.
  if (entry.isTrue("Hidden")) {
    return entry.isTrue(unregisteredKey) ? LoginServiceStatus::NotRegistered
                                         : LoginServiceStatus::RequiresApproval;
  }
  // By this key GNOME and its relatives switch an entry off.
  if (entry.value("X-GNOME-Autostart-enabled") == "false") {
    return LoginServiceStatus::RequiresApproval;
  }
  if (entry.value("Exec").value_or("").empty()) {
    return LoginServiceStatus::NotRegistered;
  }
  return isForThisDesktop(entry) && canBeTried(entry) ? LoginServiceStatus::Enabled
                                                      : LoginServiceStatus::RequiresApproval;
}

/// Whether the desktop would start the application without an entry of the user's. Only the entry
/// in the most important folder counts.
bool isStartedSystemWide() {
  for (const std::string& folder : systemConfigurationFolders()) {
    if (const auto text = readFile(folder + entryName)) {
      return statusOf(DesktopEntry(*text)) == LoginServiceStatus::Enabled;
    }
  }
  return false;
}

/// Starts the first program for any of the desktop's names that PATH has; it outlives this process.
bool openAutostartSettings() {
  for (const QString& desktop : currentDesktops()) {
    for (const SettingsProgram& each : settingsPrograms) {
      const QString path =
          desktop == each.desktop ? QStandardPaths::findExecutable(each.program) : QString();
      const QStringList arguments = each.argument ? QStringList(each.argument) : QStringList();
      if (!path.isEmpty() && QProcess::startDetached(path, arguments)) {
        return true;
      }
    }
  }
  return false;
}

}  // namespace

AutostartLoginService::AutostartLoginService(std::string executablePath, SystemLog& log)
    : executablePath_(std::move(executablePath)), log_(log) {}

void AutostartLoginService::registerMainApp() {
  FileReplacement file(userEntryPath());
  DesktopEntry entry(file.currentContent().value_or(""));
  if (entry.isTrue(unregisteredKey)) {
    entry.remove("Hidden");
    entry.remove(unregisteredKey);
  }
  entry.setValue("Type", "Application");
  entry.setValue("Name", "Zephlin");
  entry.setValue("Comment", "Instant Caps Lock");
  entry.setValue("Exec", execValue(executablePath_));
  entry.setValue("Icon", "com.quorvenel.zephlin");
  entry.setValue("Terminal", "false");
  entry.setValue("StartupNotify", "false");
  if (!entry.value("X-GNOME-Autostart-enabled")) {
    entry.setValue("X-GNOME-Autostart-enabled", "true");
  }
  file.commit(entry.text());
}

void AutostartLoginService::unregisterMainApp() {
  const std::string path = userEntryPath();
  if (!isStartedSystemWide()) {
    if (::unlink(path.c_str()) == -1 && errno != ENOENT && errno != ENOTDIR) {
      throw std::system_error(errno, std::generic_category(), "cannot remove " + path);
    }
    return;
  }
  FileReplacement file(path);
  DesktopEntry entry(file.currentContent().value_or(""));
  entry.setValue("Type", "Application");
  entry.setValue("Name", "Zephlin");
  entry.setValue("Hidden", "true");
  entry.setValue(unregisteredKey, "true");
  file.commit(entry.text());
}

LoginServiceStatus AutostartLoginService::status() const {
  try {
    if (const auto text = readFile(userEntryPath())) {
      return statusOf(DesktopEntry(*text));
    }
    return isStartedSystemWide() ? LoginServiceStatus::Enabled : LoginServiceStatus::NotRegistered;
  } catch (const std::system_error&) {
    // The desktop cannot read the entry either, so it starts nothing.
    return LoginServiceStatus::NotRegistered;
  }
}

void AutostartLoginService::openSystemSettingsLoginItems() {
  if (!openAutostartSettings()) {
    log_.log(
        "Zephlin: this desktop has no known settings for what starts at login; Zephlin's entry "
        "is " +
        userEntryPath());
  }
}

}  // namespace zephlin
