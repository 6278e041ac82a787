#include "Platform/Linux/LinuxDispatch.h"

#include <QMetaObject>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <utility>

#include "Platform/Linux/LoopTimer.h"

namespace zephlin {

namespace {

/// A queue's owner's side; the thread is the dispatch's.
class WorkerQueue final : public SerialQueue {
 public:
  explicit WorkerQueue(std::shared_ptr<SerialWorker> worker) : worker_(std::move(worker)) {}
  WorkerQueue(const WorkerQueue&) = delete;
  WorkerQueue& operator=(const WorkerQueue&) = delete;
  ~WorkerQueue() override { worker_->close(); }

  void post(std::function<void()> work) override { worker_->post(std::move(work)); }

 private:
  std::shared_ptr<SerialWorker> worker_;
};

}  // namespace

void LinuxMainQueue::post(std::function<void()> work) {
  QMetaObject::invokeMethod(&context_, std::move(work), Qt::QueuedConnection);
}

void LinuxMainQueue::postAfter(Delay delay, std::function<void()> work) {
  const std::chrono::duration<double> wait(std::max(delay.seconds, 0.0));
  QTimer::singleShot(std::chrono::ceil<std::chrono::milliseconds>(wait), Qt::PreciseTimer,
                     &context_, std::move(work));
}

std::unique_ptr<SerialQueue> LinuxDispatch::makeSerialQueue(const std::string& label,
                                                            QualityOfService /*quality*/) {
  workers_.push_back(std::make_shared<SerialWorker>(label));
  return std::make_unique<WorkerQueue>(workers_.back());
}

std::unique_ptr<Timer> LinuxDispatch::scheduleTimer(Interval interval, Tolerance tolerance,
                                                    std::function<void()> tick) {
  return std::make_unique<LoopTimer>(interval, tolerance, std::move(tick));
}

bool LinuxDispatch::waitForSerialQueues(Delay atMost) {
  const auto deadline = std::chrono::steady_clock::now() +
                        std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                            std::chrono::duration<double>(atMost.seconds));
  return std::all_of(workers_.begin(), workers_.end(),
                     [deadline](const auto& worker) { return worker->waitUntilIdle(deadline); });
}

}  // namespace zephlin
