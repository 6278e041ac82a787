#include "Platform/Linux/LinuxDispatch.h"

#include <QMetaObject>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <mutex>
#include <utility>

#include "Platform/Linux/LoopTimer.h"

namespace zephlin {

namespace {

/// A queue's owner's side; the thread is the dispatch's.
///
/// Its first work begins when the event loop has had its turn. At launch that is child processes:
/// the fork holds the main thread up, which has a status item to show first.
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
