#include "Platform/Linux/Session/InstanceLockPath.h"

#include <unistd.h>

#include <cstdlib>

namespace zephlin {

namespace {

std::string runtimeDirectory() {
  const char* const directory = std::getenv("XDG_RUNTIME_DIR");
  if (directory != nullptr && *directory == '/') {
    return directory;
  }
  return "/run/user/" + std::to_string(::getuid());
}

}  // namespace

std::string instanceLockPath(std::string_view bundleIdentifier) {
  return runtimeDirectory() + "/" + std::string(bundleIdentifier) + ".lock";
}

}  // namespace zephlin
