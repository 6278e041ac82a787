#pragma once

namespace zephlin {

/// Owns an open file descriptor, or none (-1), and closes it.
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

/// A pipe whose ends are close-on-exec and never one of the descriptors 0 to 2, even where those
/// are closed: what is written to standard output cannot end up in it.
struct Pipe {
  FileDescriptor readEnd;
  FileDescriptor writeEnd;
};

/// Throws std::system_error when descriptors have run out.
Pipe makePipe();

}  // namespace zephlin
