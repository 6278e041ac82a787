#pragma once

#include <spawn.h>

namespace zephlin {

/// Owns and closes an open file descriptor, or holds -1.
class FileDescriptor {
 public:
  explicit FileDescriptor(int descriptor = -1) noexcept : descriptor_(descriptor) {}
  FileDescriptor(FileDescriptor&& other) noexcept;
  FileDescriptor& operator=(FileDescriptor&& other) noexcept;
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor();

  [[nodiscard]] int get() const noexcept { return descriptor_; }
  [[nodiscard]] bool isOpen() const noexcept { return descriptor_ != -1; }
  void close() noexcept;

 private:
  int descriptor_;
};

/// A pipe whose ends are close-on-exec and never one of the descriptors 0 to 2, even if those are
/// closed: nothing that is written to standard output can end up in it.
struct Pipe {
  FileDescriptor readEnd;
  FileDescriptor writeEnd;
};

/// Throws std::system_error when descriptors have run out. On macOS the ends become close-on-exec
/// an instant after they are open: a child that is launched just then, by other means than
/// `ChildProcess`, inherits them.
Pipe makePipe();

/// Makes posix_spawn's child inherit the descriptors 0 to 2 only, as `actions` leave them. To be
/// added after all other actions; adds to the flags of `attributes`. Returns an error number or 0.
int inheritStandardDescriptorsOnly(posix_spawn_file_actions_t& actions,
                                   posix_spawnattr_t& attributes);

/// Opens /dev/null in place of each of the descriptors 0 to 2 that the program was started
/// without, so that no socket or file of ours can become "standard output".
void openMissingStandardDescriptors();

/// For `makePipe`, a body for each system: returns as pipe(2) does.
int openCloseOnExecPipe(int* ends);

}  // namespace zephlin
