#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>
#include <string_view>

#include "Base/FileDescriptor.h"

namespace zephlin {

/// Replaces a file atomically: readers never see a partial file, even if a writer is killed. While
/// it lives, other processes that replace the same file wait for it, so what is read through it is
/// still true when it is committed.
///
/// The new content is written beside the file, under a name that its writer keeps locked (fcntl);
/// the next writer takes over what a dead one left. A symbolic link stays, and its target is
/// replaced. Every operation throws std::system_error, whose what() begins with "cannot"
/// and names the file. Any thread, but one replacement of a file at a time in this process.
class FileReplacement {
 public:
  /// Makes the folder (0700) if it is missing. Waits up to two seconds for other writers.
  explicit FileReplacement(const std::string& path);
  FileReplacement(const FileReplacement&) = delete;
  FileReplacement& operator=(const FileReplacement&) = delete;
  /// Changes nothing without a commit.
  ~FileReplacement();

  /// The file that is replaced, after following all links.
  [[nodiscard]] const std::string& path() const { return path_; }
  /// What the file holds; absent if there is no file.
  [[nodiscard]] std::optional<std::string> currentContent() const;
  /// Replaces the file and syncs it to disk. Only the user may read a new file (0600); an existing
  /// one keeps its permissions. Called once.
  void commit(std::string_view content);

 private:
  [[nodiscard]] bool tryToLock();
  void write(std::string_view content) const;

  std::string path_;
  std::string newPath_;
  FileDescriptor newFile_;
  mode_t permissions_ = S_IRUSR | S_IWUSR;
};

/// Reads a regular file of at most a megabyte; absent if there is no such file. Throws
/// std::system_error as above.
std::optional<std::string> readFile(const std::string& path);

}  // namespace zephlin
