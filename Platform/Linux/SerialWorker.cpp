#include "Platform/Linux/SerialWorker.h"

#include <pthread.h>

#include <chrono>
#include <cstddef>
#include <utility>

namespace zephlin {

namespace {

/// The kernel keeps this much of a thread's name (pthread_setname_np(3)).
constexpr std::size_t threadNameLength = 15;

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

bool SerialWorker::waitUntilIdle(std::chrono::steady_clock::time_point deadline) {
  begin();
  std::unique_lock lock(mutex_);
  return changed_.wait_until(lock, deadline, [this] { return posted_.empty() && !isBusy_; });
}

void SerialWorker::run(const std::string& label) {
  // A label's end tells more than its beginning.
  const std::size_t start =
      label.size() > threadNameLength ? label.size() - threadNameLength : std::size_t{0};
  ::pthread_setname_np(::pthread_self(), label.c_str() + start);
  while (const auto work = take()) {
    work();
  }
}

std::function<void()> SerialWorker::take() {
  std::unique_lock lock(mutex_);
  isBusy_ = false;
  changed_.notify_all();
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
