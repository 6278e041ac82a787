#include "Platform/Linux/Session/AutostartEntry.h"

#include <QStandardPaths>
#include <QString>
#include <algorithm>
#include <sstream>

namespace zephlin {

namespace {

bool contains(const std::vector<std::string>& names, const std::string& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

/// The first of the desktop's names that one of the entry's lists has decides.
bool isForDesktop(const DesktopEntry& entry, const std::string& currentDesktop) {
  const auto only = entry.list("OnlyShowIn");
  const auto never = entry.list("NotShowIn");
  std::istringstream names(currentDesktop);
  for (std::string name; std::getline(names, name, ':');) {
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

}  // namespace

AutostartState autostartState(const DesktopEntry& entry, const std::string& currentDesktop) {
  // A hidden entry need hold nothing else.
  if (entry.isTrue("Hidden") || entry.value("X-GNOME-Autostart-enabled") == "false") {
    return AutostartState::SwitchedOff;
  }
  if (entry.value("Exec").value_or("").empty()) {
    return AutostartState::Invalid;
  }
  return isForDesktop(entry, currentDesktop) && canBeTried(entry) ? AutostartState::Enabled
                                                                  : AutostartState::SwitchedOff;
}

}  // namespace zephlin
