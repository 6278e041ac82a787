#include "Platform/Linux/Session/AutostartLoginService.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include "Platform/Linux/Session/AutostartSettings.h"
#include "Platform/Linux/Session/ConfigurationFolder.h"
#include "Platform/Linux/Session/FileReplacement.h"

namespace zephlin {

namespace {

constexpr const char* entryName = "/autostart/com.quorvenel.zephlin.desktop";
/// Tells the entry that was hidden here from one that the user has switched off.
constexpr const char* unregisteredKey = "X-Zephlin-Unregistered";

std::string userEntryPath() {
  return configurationFolder() + entryName;
}

AutostartState stateNow(const DesktopEntry& entry) {
  return autostartState(entry, qEnvironmentVariable("XDG_CURRENT_DESKTOP").toStdString());
}

/// Whether the desktop would start the application without any entry of the user's. The most
/// important entry stands for all.
bool isStartedSystemWide() {
  for (const std::string& folder : systemConfigurationFolders()) {
    if (const auto text = readFile(folder + entryName)) {
      return stateNow(DesktopEntry(*text)) == AutostartState::Enabled;
    }
  }
  return false;
}

LoginServiceStatus statusOf(const DesktopEntry& entry) {
  if (entry.isTrue("Hidden") && entry.isTrue(unregisteredKey)) {
    return LoginServiceStatus::NotRegistered;
  }
  switch (stateNow(entry)) {
    case AutostartState::Enabled:
      return LoginServiceStatus::Enabled;
    case AutostartState::SwitchedOff:
      return LoginServiceStatus::RequiresApproval;
    case AutostartState::Invalid:
      break;
  }
  return LoginServiceStatus::NotRegistered;
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
  if (!openAutostartSettings(qEnvironmentVariable("XDG_CURRENT_DESKTOP"))) {
    log_.log(
        "Zephlin: this desktop has no known settings of what starts at login; Zephlin's entry is " +
        userEntryPath());
  }
}

}  // namespace zephlin
