#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>

#include "KeyboardService/Service/Permissions.h"

namespace zephlin {

/// The distribution, as os-release(5) names it. `root` is the root directory.
std::string distribution(const std::filesystem::path& root = "/");

/// The kernel's name, release and architecture: "Linux 6.1.0-28-amd64 x86_64".
std::string kernel();

/// Who has logged in, even if sudo has changed the user since; `processes` is /proc.
uid_t loginUser(const std::filesystem::path& processes = "/proc");

/// How that user is logged in: "local (seat0)", "over SSH".
std::string session(const Logins& logins, bool isInSshConnection);

}  // namespace zephlin
