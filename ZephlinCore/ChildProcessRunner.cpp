#include "ZephlinCore/ChildProcessRunner.h"

#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>
#include <thread>
#include <utility>

#include "Base/FileDescriptor.h"
#include "ZephlinCore/ChildProcess.h"
#include "ZephlinCore/TimeoutFlag.h"
#include "ZephlinCore/Watchdog.h"

namespace zephlin {

namespace {

using Clock = std::chrono::steady_clock;

/// Waits for something to read, or for the end of file; false once the deadline has passed.
bool waitUntilReadable(const FileDescriptor& descriptor, Clock::time_point deadline) {
  for (;;) {
    const auto remaining = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    if (remaining.count() <= 0) {
      return false;
    }
    pollfd request{descriptor.get(), POLLIN, 0};
    const int ready = ::poll(&request, 1, static_cast<int>(remaining.count()));
    if (ready > 0) {
      return true;
    }
    if (ready == -1 && errno != EINTR) {
      throw std::system_error(errno, std::generic_category(), "poll");
    }
  }
}

/// What the child has printed, as far as it is kept.
class Output {
 public:
  /// Reads once and returns the number of bytes, 0 at the end of file. What is too long is read all
  /// the same, so that the child can go on.
  std::size_t readFrom(const FileDescriptor& descriptor) {
    ssize_t count = -1;
    while ((count = ::read(descriptor.get(), buffer_.data(), buffer_.size())) == -1) {
      if (errno != EINTR) {
        throw std::system_error(errno, std::generic_category(), "read");
      }
    }
    const auto read = static_cast<std::size_t>(count);
    if (text_ && text_->size() + read <= maximumChildOutputBytes) {
      text_->append(buffer_.data(), read);
    } else {
      text_.reset();
    }
    return read;
  }

  std::optional<std::string> take() { return std::move(text_); }

 private:
  std::optional<std::string> text_ = std::string();
  std::array<char, 65536> buffer_;
};

void readToEnd(const FileDescriptor& descriptor, Clock::time_point deadline, Output& output) {
  while (waitUntilReadable(descriptor, deadline) && output.readFrom(descriptor) > 0) {
  }
}

/// Reads what the pipe holds now, and no more: a process that the child left behind may go on
/// writing.
void readRest(const FileDescriptor& descriptor, Output& output) {
  int waiting = 0;
  if (::ioctl(descriptor.get(), FIONREAD, &waiting) == -1) {
    throw std::system_error(errno, std::generic_category(), "ioctl");
  }
  while (waiting > 0) {
    waiting -= static_cast<int>(output.readFrom(descriptor));
  }
}

/// A child's output ends in the middle of its exit, the rest of which takes microseconds.
bool endsAtOnce(const ChildProcess& child) {
  const auto timeout = Clock::now() + std::chrono::milliseconds(1);
  while (child.isRunning()) {
    if (Clock::now() >= timeout) {
      return false;
    }
    std::this_thread::yield();
  }
  return true;
}

}  // namespace

ChildProcessResult runChildProcess(const std::string& executable,
                                   std::span<const std::string> arguments,
                                   std::chrono::duration<double> timeLimit) {
  Pipe pipe = makePipe();
  ChildProcess child(executable, arguments, pipe.writeEnd);
  pipe.writeEnd.close();

  const auto deadline = Clock::now() + std::chrono::duration_cast<Clock::duration>(timeLimit);
  TimeoutFlag timeoutFlag;
  Output output;
  // In this order: a child blocks while the pipe is full, and would never exit.
  readToEnd(pipe.readEnd, deadline, output);
  // Reading keeps to the deadline by itself; only a child that goes on after it costs a thread.
  if (!endsAtOnce(child)) {
    const Watchdog watchdog(deadline, [&child, &timeoutFlag] {
      if (child.isRunning()) {
        timeoutFlag.set();
        child.kill();
      }
    });
    child.waitUntilExit();
  }
  // Should this process have been stopped, the deadline may have passed before all was read of a
  // child that ended in time.
  readRest(pipe.readEnd, output);
  ChildProcessResult result;
  // The watchdog is gone: nothing can signal the identifier once reaping has freed it.
  result.terminationStatus = child.reap();
  result.timedOut = timeoutFlag.value();
  result.output = output.take();
  return result;
}

}  // namespace zephlin
