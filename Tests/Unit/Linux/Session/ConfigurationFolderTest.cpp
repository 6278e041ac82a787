#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "Platform/Linux/Session/ConfigurationFolder.h"

namespace zephlin {
namespace {

TEST(ConfigurationFolderTest, AnAbsolutePathOfTheEnvironmentCounts) {
  ::setenv("XDG_CONFIG_HOME", "/elsewhere", 1);
  EXPECT_EQ(configurationFolder(), "/elsewhere");
  EXPECT_EQ(defaultsPath(), "/elsewhere/zephlin/defaults.json");
}

TEST(ConfigurationFolderTest, AnyOtherPathDoesNot) {
  ::setenv("HOME", "/home/someone", 1);
  for (const char* const value : {"", "relative", "~/x"}) {
    ::setenv("XDG_CONFIG_HOME", value, 1);
    EXPECT_EQ(configurationFolder(), "/home/someone/.config") << value;
  }
}

TEST(ConfigurationFolderTest, WithoutAnEnvironmentTheHomeIsThatOfTheUser) {
  ::unsetenv("XDG_CONFIG_HOME");
  ::unsetenv("HOME");
  EXPECT_EQ(configurationFolder(), std::string(::getpwuid(::getuid())->pw_dir) + "/.config");
}

TEST(ConfigurationFolderTest, TheSystemsFoldersAreThoseOfTheEnvironmentInItsOrder) {
  ::setenv("XDG_CONFIG_DIRS", "/b:relative::/a", 1);
  EXPECT_EQ(systemConfigurationFolders(), (std::vector<std::string>{"/b", "/a"}));
  ::unsetenv("XDG_CONFIG_DIRS");
  EXPECT_EQ(systemConfigurationFolders(), std::vector<std::string>{"/etc/xdg"});
}

}  // namespace
}  // namespace zephlin
