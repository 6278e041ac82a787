#include "Platform/Linux/LinuxDispatch.h"

#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QMetaObject>
#include <algorithm>
#include <condition_variable>
#include <csignal>
#include <cstddef>
#include <deque>
#include <fstream>
#include <mutex>
#include <thread>
#include <utility>

#include "Base/FileDescriptor.h"

extern "C" {
#include <sys/pidfd.h>  // glibc 2.36 leaves the linkage to C++.
}

namespace zephlin {

namespace {

using std::chrono::nanoseconds;

/// The kernel keeps this much of a thread's name (pthread_setname_np(3)).
constexpr std::size_t threadNameLength = 15;

nanoseconds monotonicNow() {
  return std::chrono::steady_clock::now().time_since_epoch();
}

/// Sends SIGTERM to the child processes that a thread has made.
void endChildren(pid_t thread) {
  std::ifstream children("/proc/self/task/" + std::to_string(thread) + "/children");
  for (pid_t child = 0; children >> child;) {
    const FileDescriptor process(::pidfd_open(child, 0));
    siginfo_t info{};
    // The number of a child that was reaped meanwhile may belong to a stranger, which waitid
    // rejects.
    if (::waitid(P_PIDFD, static_cast<id_t>(process.get()), &info, WEXITED | WNOHANG | WNOWAIT) ==
        0) {
      ::pidfd_send_signal(process.get(), SIGTERM, nullptr, 0);
    }
  }
}

}  // namespace

/// A thread that works off a queue in order, from begin() on. Any thread may use it.
class SerialWorker {
 public:
  explicit SerialWorker(const std::string& label) : thread_([this, label] { run(label); }) {}
  SerialWorker(const SerialWorker&) = delete;
  SerialWorker& operator=(const SerialWorker&) = delete;
  /// Waits until all that was posted has run.
  ~SerialWorker() {
    close();
    thread_.join();
  }

  void post(std::function<void()> work) {
    const std::lock_guard lock(mutex_);
    posted_.push_back(std::move(work));
    changed_.notify_all();
  }

  void begin() {
    const std::lock_guard lock(mutex_);
    hasBegun_ = true;
    changed_.notify_all();
  }

  /// Lets the thread end once all that was posted has run; it begins now if it has not yet.
  void close() {
    const std::lock_guard lock(mutex_);
    isClosed_ = true;
    changed_.notify_all();
  }

  /// As LinuxDispatch::abandonSerialQueues, for this queue.
  bool abandon() {
    const std::lock_guard lock(mutex_);
    posted_.clear();
    if (isBusy_) {
      endChildren(threadIdentifier_);
    }
    return !isBusy_;
  }

 private:
  void run(const std::string& label);
  /// Waits for the next piece of work; empty if there is no more to come.
  std::function<void()> take();

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::function<void()>> posted_;
  pid_t threadIdentifier_ = 0;
  bool hasBegun_ = false;
  bool isBusy_ = false;
  bool isClosed_ = false;
  std::thread thread_;
};

void SerialWorker::run(const std::string& label) {
  // The end of a label says more than its beginning.
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

namespace {

/// A queue for its owner; the dispatch owns the thread.
///
/// Its first work begins after the event loop's next turn. At launch that is a run of hidutil,
/// which would compete for the processors with the main thread, which has a status item to show
/// first.
class WorkerQueue final : public SerialQueue {
 public:
  WorkerQueue(std::shared_ptr<SerialWorker> worker, std::shared_ptr<MainQueue> mainQueue)
      : worker_(std::move(worker)), mainQueue_(std::move(mainQueue)) {}
  WorkerQueue(const WorkerQueue&) = delete;
  WorkerQueue& operator=(const WorkerQueue&) = delete;
  ~WorkerQueue() override { worker_->close(); }

  void post(std::function<void()> work) override {
    worker_->post(std::move(work));
    std::call_once(beginning_,
                   [this] { mainQueue_->post([worker = worker_] { worker->begin(); }); });
  }

 private:
  std::shared_ptr<SerialWorker> worker_;
  std::shared_ptr<MainQueue> mainQueue_;
  std::once_flag beginning_;
};

}  // namespace

void LinuxMainQueue::post(std::function<void()> work) {
  QMetaObject::invokeMethod(&context_, std::move(work), Qt::QueuedConnection);
}

void LinuxMainQueue::postAfter(Seconds delay, std::function<void()> work) {
  const Seconds wait = std::max(delay, Seconds::zero());
  QTimer::singleShot(std::chrono::ceil<std::chrono::milliseconds>(wait), Qt::PreciseTimer,
                     &context_, std::move(work));
}

nanoseconds coalescedFireTime(nanoseconds due, nanoseconds tolerance) {
  if (tolerance <= nanoseconds::zero()) {
    return due;
  }
  const nanoseconds beyond = due % tolerance;
  return beyond == nanoseconds::zero() ? due : due - beyond + tolerance;
}

LoopTimer::LoopTimer(Seconds interval, Seconds tolerance, std::function<void()> tick)
    : interval_(std::chrono::duration_cast<nanoseconds>(interval)),
      tolerance_(std::chrono::duration_cast<nanoseconds>(tolerance)),
      tick_(std::move(tick)),
      due_(monotonicNow() + interval_) {
  // Qt's coarse timers may be early.
  timer_.setTimerType(Qt::PreciseTimer);
  timer_.setSingleShot(true);
  QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { fire(); });
  arm();
}

void LoopTimer::arm() {
  const nanoseconds wait = coalescedFireTime(due_, tolerance_) - monotonicNow();
  timer_.start(std::chrono::ceil<std::chrono::milliseconds>(std::max(wait, nanoseconds::zero())));
}

void LoopTimer::fire() {
  const nanoseconds now = monotonicNow();
  due_ += interval_ * (1 + (now - due_) / interval_);
  arm();
  // A copy, since the tick may destroy the timer.
  const std::function<void()> tick = tick_;
  tick();
}

LinuxDispatch::LinuxDispatch() = default;
LinuxDispatch::~LinuxDispatch() = default;

std::unique_ptr<SerialQueue> LinuxDispatch::makeSerialQueue(const std::string& label) {
  workers_.push_back(std::make_shared<SerialWorker>(label));
  return std::make_unique<WorkerQueue>(workers_.back(), mainQueue_);
}

std::unique_ptr<Timer> LinuxDispatch::scheduleTimer(Seconds interval, Seconds tolerance,
                                                    std::function<void()> tick) {
  return std::make_unique<LoopTimer>(interval, tolerance, std::move(tick));
}

bool LinuxDispatch::abandonSerialQueues() {
  bool isIdle = true;
  for (const auto& worker : workers_) {
    isIdle = worker->abandon() && isIdle;
  }
  return isIdle;
}

}  // namespace zephlin
