#include "Platform/Linux/SerialWorker.h"

#include <pthread.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <utility>

namespace zephlin {

namespace {

/// The kernel keeps this much of a thread's name (pthread_setname_np(3)).
constexpr std::size_t threadNameLength = 15;

/// The process that the current thread works for, or 0.
thread_local pid_t workersProcess = 0;

/// Runs in every child process, behind the fork.
void endWithWorker() {
  if (workersProcess == 0) {
    return;
  }
  ::prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (::getppid() != workersProcess) {
    ::_exit(EXIT_FAILURE);
  }
}

void handleForks() {
  [[maybe_unused]] static const int result = ::pthread_atfork(nullptr, nullptr, endWithWorker);
}

}  // namespace

SerialWorker::SerialWorker(const std::string& label) : thread_([this, label] { run(label); }) {
  handleForks();
}

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
  return !isBusy_;
}

void SerialWorker::run(const std::string& label) {
  // A label's end tells more than its beginning.
  const std::size_t start =
      label.size() > threadNameLength ? label.size() - threadNameLength : std::size_t{0};
  ::pthread_setname_np(::pthread_self(), label.c_str() + start);
  workersProcess = ::getpid();
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
