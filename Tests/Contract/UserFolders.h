#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

#include "Tests/Support/TemporaryDirectory.h"

namespace zephlin::contract {

/// Empty folders for the user's files, which the environment names from then on.
class UserFolders {
 public:
  UserFolders() {
    ::setenv("XDG_CONFIG_HOME", folder_.file("configuration").c_str(), 1);
    ::setenv("XDG_CONFIG_DIRS", folder_.file("system").c_str(), 1);
    std::filesystem::create_directory(folder_.file("runtime"));
    std::filesystem::permissions(folder_.file("runtime"), std::filesystem::perms(0700));
    ::setenv("XDG_RUNTIME_DIR", folder_.file("runtime").c_str(), 1);
  }

  [[nodiscard]] std::string autostart() const { return folder_.file("configuration/autostart"); }
  [[nodiscard]] std::string defaults() const {
    return folder_.file("configuration/zephlin/defaults.json");
  }

 private:
  test::TemporaryDirectory folder_;
};

}  // namespace zephlin::contract
