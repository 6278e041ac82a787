#pragma once

#include <string>
#include <vector>

namespace zephlin {

/// Where the user's configuration is (XDG Base Directory): XDG_CONFIG_HOME if it is an absolute
/// path, otherwise the folder .config in the user's home, which is HOME or else the one in the user
/// database.
std::string configurationFolder();

/// Where the system's configuration is (XDG_CONFIG_DIRS, /etc/xdg by default), the most important
/// first. Paths that are not absolute are left out, as freedesktop.org requires.
std::vector<std::string> systemConfigurationFolders();

/// The file with the application's settings.
std::string defaultsPath();

}  // namespace zephlin
