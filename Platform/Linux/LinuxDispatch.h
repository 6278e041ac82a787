#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Platform/Dispatch.h"
#include "Platform/Linux/SerialWorker.h"

namespace zephlin {

/// The main queue is Qt's event loop.
class LinuxMainQueue final : public MainQueue {
 public:
  void post(std::function<void()> work) override;
  void postAfter(Delay delay, std::function<void()> work) override;

 private:
  QObject context_;
};

/// Made after the QApplication. Its end waits for the work of its serial queues.
class LinuxDispatch final : public Dispatch {
 public:
  MainQueue& mainQueue() override { return mainQueue_; }
  /// There is one quality of service, and work that needs less than the user's own waits for it by
  /// itself: its threads are those of any program.
  std::unique_ptr<SerialQueue> makeSerialQueue(const std::string& label,
                                               QualityOfService quality) override;
  std::unique_ptr<Timer> scheduleTimer(Interval interval, Tolerance tolerance,
                                       std::function<void()> tick) override;

  /// Waits for the work of the serial queues, but not longer. Whether all of it is done.
  bool waitForSerialQueues(Delay atMost);

 private:
  LinuxMainQueue mainQueue_;
  std::vector<std::shared_ptr<SerialWorker>> workers_;
};

}  // namespace zephlin
