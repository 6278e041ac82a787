#include "Platform/Linux/Session/ConfigurationFolder.h"

#include <QDir>
#include <cstdlib>
#include <sstream>

namespace zephlin {

namespace {

std::string environment(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? std::string() : value;
}

}  // namespace

std::string configurationFolder() {
  const std::string folder = environment("XDG_CONFIG_HOME");
  return folder.starts_with('/') ? folder : QDir::homePath().toStdString() + "/.config";
}

std::vector<std::string> systemConfigurationFolders() {
  const std::string folders = environment("XDG_CONFIG_DIRS");
  std::istringstream list(folders.empty() ? "/etc/xdg" : folders);
  std::vector<std::string> absolute;
  for (std::string folder; std::getline(list, folder, ':');) {
    if (folder.starts_with('/')) {
      absolute.push_back(folder);
    }
  }
  return absolute;
}

std::string defaultsPath() {
  return configurationFolder() + "/zephlin/defaults.json";
}

}  // namespace zephlin
