#include "Platform/Linux/LinuxProcessInfo.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace zephlin {

std::optional<std::string> LinuxProcessInfo::environmentVariable(const std::string& name) const {
  const char* const value = std::getenv(name.c_str());
  return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

std::string LinuxProcessInfo::mainBundlePath() const {
  std::error_code error;
  return std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
}

}  // namespace zephlin
