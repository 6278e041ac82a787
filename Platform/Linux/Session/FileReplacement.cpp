#include "Platform/Linux/Session/FileReplacement.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <system_error>
#include <thread>
#include <utility>

namespace zephlin {

namespace {

using namespace std::chrono_literals;

constexpr auto lockTimeout = 2s;
constexpr auto lockPause = 10ms;
/// As many as the kernel follows (path_resolution(7)).
constexpr int maximumLinks = 40;
/// Of a file that is read: parsing a few hundred megabytes takes many seconds.
constexpr std::size_t maximumFileBytes = std::size_t{1} << 20U;

[[noreturn]] void fail(const std::string& what, const std::string& path, int error = errno) {
  throw std::system_error(error, std::generic_category(), "cannot " + what + " " + path);
}

/// Unlike canonical(), also follows a link whose target does not exist yet.
std::string withoutLinks(std::filesystem::path path) {
  std::error_code error;
  for (int link = 0; std::filesystem::is_symlink(std::filesystem::symlink_status(path, error));
       ++link) {
    if (link == maximumLinks) {
      fail("follow", path, ELOOP);
    }
    path = path.parent_path() / std::filesystem::read_symlink(path);
  }
  return path;
}

void makeFolder(const std::filesystem::path& folder) {
  std::error_code error;
  if (folder.empty() || std::filesystem::is_directory(folder, error)) {
    return;
  }
  makeFolder(folder.parent_path());
  const int result = ::mkdir(folder.c_str(), S_IRWXU);
  const int reason = errno;
  // Another process may have been faster.
  if (result == -1 && !std::filesystem::is_directory(folder, error)) {
    fail("make the folder", folder, reason);
  }
}

void syncFolder(const std::string& folder) {
  const FileDescriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  // The file is already replaced, so it is too late to fail, and not every file system can do this.
  ::fsync(descriptor.get());
}

bool isFileAt(const FileDescriptor& file, const std::string& path) {
  struct stat held {};
  struct stat found {};
  return ::fstat(file.get(), &held) == 0 && ::lstat(path.c_str(), &found) == 0 &&
         held.st_dev == found.st_dev && held.st_ino == found.st_ino;
}

}  // namespace

std::optional<std::string> readFile(const std::string& path) {
  const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  if (!file.isOpen()) {
    if (errno == ENOENT) {
      return std::nullopt;
    }
    fail("read", path);
  }
  struct stat status {};
  if (::fstat(file.get(), &status) == 0 && !S_ISREG(status.st_mode)) {
    fail("read", path, S_ISDIR(status.st_mode) ? EISDIR : EINVAL);
  }
  std::string content;
  std::array<char, 4096> chunk;
  ssize_t count = 0;
  while ((count = ::read(file.get(), chunk.data(), chunk.size())) > 0) {
    content.append(chunk.data(), static_cast<std::size_t>(count));
    if (content.size() > maximumFileBytes) {
      fail("read", path, EFBIG);
    }
  }
  if (count == -1) {
    fail("read", path);
  }
  return content;
}

FileReplacement::FileReplacement(const std::string& path) : path_(withoutLinks(path)) {
  const std::filesystem::path file(path_);
  newPath_ = file.parent_path() / ("." + file.filename().string() + ".new");
  struct stat status {};
  if (::stat(path_.c_str(), &status) == 0) {
    // The user may have linked it to a device such as /dev/null, which must survive.
    if (!S_ISREG(status.st_mode)) {
      fail("replace", path_, S_ISDIR(status.st_mode) ? EISDIR : EINVAL);
    }
    permissions_ = status.st_mode & (S_IRWXU | S_IRWXG | S_IRWXO);
  }
  makeFolder(file.parent_path());
  const auto deadline = std::chrono::steady_clock::now() + lockTimeout;
  while (!tryToLock()) {
    if (std::chrono::steady_clock::now() >= deadline) {
      fail("write", path_, EBUSY);
    }
    std::this_thread::sleep_for(lockPause);
  }
}

FileReplacement::~FileReplacement() {
  if (newFile_.isOpen()) {
    // Before closing it releases the lock, so that a waiting writer notices.
    ::unlink(newPath_.c_str());
  }
}

bool FileReplacement::tryToLock() {
  FileDescriptor file(
      ::open(newPath_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR));
  struct flock lock {};
  lock.l_type = F_WRLCK;
  lock.l_whence = SEEK_SET;
  if (!file.isOpen()) {
    fail("write", path_);
  }
  if (::fcntl(file.get(), F_SETLK, &lock) == -1) {
    if (errno == EACCES || errno == EAGAIN) {
      return false;
    }
    fail("lock", path_);
  }
  // The former holder may have renamed or removed what was opened here.
  if (!isFileAt(file, newPath_)) {
    return false;
  }
  newFile_ = std::move(file);
  return true;
}

std::optional<std::string> FileReplacement::currentContent() const {
  return readFile(path_);
}

void FileReplacement::commit(std::string_view content) {
  write(content);
  if (::rename(newPath_.c_str(), path_.c_str()) == -1) {
    fail("write", path_);
  }
  newFile_.close();
  syncFolder(std::filesystem::path(path_).parent_path());
}

void FileReplacement::write(std::string_view content) const {
  if (::ftruncate(newFile_.get(), 0) == -1 || ::fchmod(newFile_.get(), permissions_) == -1) {
    fail("write", path_);
  }
  while (!content.empty()) {
    const ssize_t count = ::write(newFile_.get(), content.data(), content.size());
    if (count == -1) {
      fail("write", path_);
    }
    content.remove_prefix(static_cast<std::size_t>(count));
  }
  if (::fsync(newFile_.get()) == -1) {
    fail("write", path_);
  }
}

}  // namespace zephlin
