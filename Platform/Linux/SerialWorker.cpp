#include "Platform/Linux/SerialWorker.h"

#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstddef>
#include <fstream>
#include <utility>

#include "Base/FileDescriptor.h"

extern "C" {
#include <sys/pidfd.h>  // glibc 2.36 leaves the linkage to C++.
}

namespace zephlin {

namespace {

/// The kernel keeps this much of a thread's name (pthread_setname_np(3)).
constexpr std::size_t threadNameLength = 15;

/// Tells the child processes that a thread has made to end.
void endChildren(pid_t thread) {
  std::ifstream children("/proc/self/task/" + std::to_string(thread) + "/children");
  for (pid_t child = 0; children >> child;) {
    const FileDescriptor process(::pidfd_open(child, 0));
    siginfo_t info{};
    // One that was reaped meanwhile may have left its number to a stranger, which is no child.
    if (::waitid(P_PIDFD, static_cast<id_t>(process.get()), &info, WEXITED | WNOHANG | WNOWAIT) ==
        0) {
      ::pidfd_send_signal(process.get(), SIGTERM, nullptr, 0);
    }
  }
}

}  // namespace

SerialWorker::SerialWorker(const std::string& label) : thread_([this, label] { run(label); }) {}

SerialWorker::~SerialWorker() {
  close();
  thread_.join();
}

void SerialWorker::post(std::function<void()> work) {
  const std::lock_guard lock(mutex_);
  posted_.push_back(std::move(work));
  changed_.notify_all();
}

void SerialWorker::begin() {
  const std::lock_guard lock(mutex_);
  hasBegun_ = true;
  changed_.notify_all();
}

void SerialWorker::close() {
  const std::lock_guard lock(mutex_);
  hasBegun_ = true;
  isClosed_ = true;
  changed_.notify_all();
}

bool SerialWorker::abandon() {
  const std::lock_guard lock(mutex_);
  posted_.clear();
  if (isBusy_) {
    endChildren(threadIdentifier_);
  }
  return !isBusy_;
}

void SerialWorker::run(const std::string& label) {
  // A label's end tells more than its beginning.
  const std::size_t start =
      label.size() > threadNameLength ? label.size() - threadNameLength : std::size_t{0};
  ::pthread_setname_np(::pthread_self(), label.c_str() + start);
  {
    const std::lock_guard lock(mutex_);
    threadIdentifier_ = ::gettid();
  }
  while (const auto work = take()) {
    work();
  }
}

std::function<void()> SerialWorker::take() {
  std::unique_lock lock(mutex_);
  isBusy_ = false;
  changed_.wait(lock, [this] { return (hasBegun_ && !posted_.empty()) || isClosed_; });
  if (posted_.empty()) {
    return {};
  }
  std::function<void()> work = std::move(posted_.front());
  posted_.pop_front();
  isBusy_ = true;
  return work;
}

}  // namespace zephlin
