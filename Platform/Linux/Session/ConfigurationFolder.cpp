#include "Platform/Linux/Session/ConfigurationFolder.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <sstream>

namespace zephlin {

namespace {

std::string environment(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? std::string() : value;
}

std::string homeFolder() {
  const std::string folder = environment("HOME");
  if (!folder.empty()) {
    return folder;
  }
  const passwd* const user = ::getpwuid(::getuid());
  return user == nullptr ? std::string() : user->pw_dir;
}

}  // namespace

std::string configurationFolder() {
  const std::string folder = environment("XDG_CONFIG_HOME");
  return folder.starts_with('/') ? folder : homeFolder() + "/.config";
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
