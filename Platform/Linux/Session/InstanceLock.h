#pragma once

#include <fcntl.h>

#include <string>
#include <string_view>

namespace zephlin {

/// The file that the running instance of an application keeps write-locked (fcntl), in the user's
/// runtime directory, which only the user can write to (XDG Base Directory).
std::string instanceLockPath(std::string_view bundleIdentifier);

/// A write lock on a whole file, for fcntl.
struct flock wholeFileLock();

}  // namespace zephlin
