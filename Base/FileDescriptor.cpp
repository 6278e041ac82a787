#include "Base/FileDescriptor.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

namespace zephlin {

namespace {

/// The first descriptor that is not a standard stream.
constexpr int firstOrdinaryDescriptor = 3;

FileDescriptor ordinary(FileDescriptor descriptor) {
  if (descriptor.get() >= firstOrdinaryDescriptor) {
    return descriptor;
  }
  FileDescriptor moved(::fcntl(descriptor.get(), F_DUPFD_CLOEXEC, firstOrdinaryDescriptor));
  if (!moved.isOpen()) {
    throw std::system_error(errno, std::generic_category(), "fcntl");
  }
  return moved;
}

}  // namespace

FileDescriptor::FileDescriptor(FileDescriptor&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)) {}

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept {
  if (this != &other) {
    close();
    descriptor_ = std::exchange(other.descriptor_, -1);
  }
  return *this;
}

FileDescriptor::~FileDescriptor() {
  close();
}

void FileDescriptor::close() noexcept {
  if (isOpen()) {
    ::close(std::exchange(descriptor_, -1));
  }
}

Pipe makePipe() {
  std::array<int, 2> ends{};
  if (openCloseOnExecPipe(ends.data()) == -1) {
    throw std::system_error(errno, std::generic_category(), "pipe");
  }
  FileDescriptor readEnd(ends[0]);
  FileDescriptor writeEnd(ends[1]);
  return {ordinary(std::move(readEnd)), ordinary(std::move(writeEnd))};
}

void openMissingStandardDescriptors() {
  for (int wanted = STDIN_FILENO; wanted < firstOrdinaryDescriptor; ++wanted) {
    if (::fcntl(wanted, F_GETFD) >= 0) {
      continue;
    }
    // The lowest free descriptor is the wanted one, since all below it are open by now. It is left
    // open for the life of the program, as a standard descriptor is.
    if (::open("/dev/null", O_RDWR) < 0) {
      return;
    }
  }
}

}  // namespace zephlin
