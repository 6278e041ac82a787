#include "ZephlinCore/ChildProcessRunner.h"

#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <condition_variable>
#include <csignal>
#include <functional>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include "Base/FileDescriptor.h"
#include "ZephlinCore/ChildProcess.h"

namespace zephlin {

namespace {

using Clock = std::chrono::steady_clock;

/// Set by the watchdog when it kills the child, and read by the runner.
class TimeoutFlag {
 public:
  void set() {
    const std::scoped_lock guard(lock_);
    value_ = true;
  }
  [[nodiscard]] bool value() const {
    const std::scoped_lock guard(lock_);
    return value_;
  }

 private:
  mutable std::mutex lock_;
  bool value_ = false;
};

/// Blocks every signal for the calling thread, then restores the thread's mask. A thread created
/// in between starts with every signal blocked.
class AllSignalsBlocked {
 public:
  AllSignalsBlocked() noexcept : previous_() {
    sigset_t all;
    sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &previous_);
  }
  AllSignalsBlocked(const AllSignalsBlocked&) = delete;
  AllSignalsBlocked& operator=(const AllSignalsBlocked&) = delete;
  ~AllSignalsBlocked() { ::pthread_sigmask(SIG_SETMASK, &previous_, nullptr); }

 private:
  sigset_t previous_;
};

/// Runs a piece of work once, at a deadline, on a thread of its own, unless cancelled before.
class Watchdog {
 public:
  /// `work` must not throw. Throws std::system_error when no thread can be created.
  Watchdog(Clock::time_point deadline, std::function<void()> work) {
    // The process's signals stay with the threads that expect them.
    const AllSignalsBlocked blocked;
    thread_ = std::thread([this, deadline, work = std::move(work)] {
      std::unique_lock lock(mutex_);
      if (!cancellation_.wait_until(lock, deadline, [this] { return cancelled_; })) {
        lock.unlock();
        work();
      }
    });
  }
  Watchdog(const Watchdog&) = delete;
  Watchdog& operator=(const Watchdog&) = delete;
  /// Cancels. Waits for work that already runs: afterwards it has run completely or not at all.
  ~Watchdog() {
    {
      const std::scoped_lock lock(mutex_);
      cancelled_ = true;
    }
    cancellation_.notify_one();
    thread_.join();
  }

 private:
  std::mutex mutex_;
  std::condition_variable cancellation_;
  bool cancelled_ = false;
  std::thread thread_;
};

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

/// What the child has printed, if it is short enough to keep.
class Output {
 public:
  /// Reads once and returns the number of bytes, 0 at the end of file. Goes on reading output that
  /// is too long to keep, so that the child is not blocked.
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

/// Reads only what the pipe holds now: a process that the child left behind may go on writing.
void readRest(const FileDescriptor& descriptor, Output& output) {
  int waiting = 0;
  if (::ioctl(descriptor.get(), FIONREAD, &waiting) == -1) {
    throw std::system_error(errno, std::generic_category(), "ioctl");
  }
  while (waiting > 0) {
    waiting -= static_cast<int>(output.readFrom(descriptor));
  }
}

/// The pipe closes in the middle of the child's exit, the rest of which takes microseconds.
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
  // Before waiting: a child blocks while the pipe is full, and would never exit.
  readToEnd(pipe.readEnd, deadline, output);
  // Reading stops at the deadline by itself; only a child that runs on afterwards costs a thread.
  if (!endsAtOnce(child)) {
    const Watchdog watchdog(deadline, [&child, &timeoutFlag] {
      if (child.isRunning()) {
        timeoutFlag.set();
        child.kill();
      }
    });
    child.waitUntilExit();
  }
  // If this process was stopped meanwhile, the deadline may have passed before everything was read,
  // though the child ended in time.
  readRest(pipe.readEnd, output);
  ChildProcessResult result;
  // The watchdog is gone: nothing can signal the identifier once reaping has freed it.
  result.terminationStatus = child.reap();
  result.timedOut = timeoutFlag.value();
  result.output = output.take();
  return result;
}

}  // namespace zephlin
