#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>
#include <string_view>

#include "Base/FileDescriptor.h"

namespace zephlin {

/// Replaces a file in one step, so that it is whole whenever it is read and whenever a writer is
/// killed. While it lives, other processes that replace the same file wait for it, so what is read
/// through it is still true when it is committed.
///
/// The new content is written beside the file, under a name that is locked as long as its writer
/// lives (fcntl); the next writer takes over what a dead one left. A symbolic link stays, and its
/// target is replaced. Every operation throws std::system_error, whose what() begins with "cannot"
/// and names the file. Any thread, but one replacement of a file at a time in this process.
class FileReplacement {
 public:
  /// Makes the folder (0700) where there is none. Waits for other writers, two seconds at most.
  explicit FileReplacement(const std::string& path);
  FileReplacement(const FileReplacement&) = delete;
  FileReplacement& operator=(const FileReplacement&) = delete;
  /// Without a commit nothing has happened.
  ~FileReplacement();

  /// The file that is replaced, all links followed.
  [[nodiscard]] const std::string& path() const { return path_; }
  /// What the file holds; absent where there is none.
  [[nodiscard]] std::optional<std::string> currentContent() const;
  /// Replaces the file and sees to it that it is on the disk. A new file is the user's alone
  /// (0600), one that was there keeps its permissions. Once.
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
