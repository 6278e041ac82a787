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
  void postAfter(Seconds delay, std::function<void()> work) override;

 private:
  QObject context_;
};

/// Made after the QApplication. Its destruction waits until all work of its serial queues has run.
class LinuxDispatch final : public Dispatch {
 public:
  std::shared_ptr<MainQueue> mainQueue() override { return mainQueue_; }
  /// Each queue has a thread, whose first work begins when the event loop has had its turn. The
  /// kernel schedules it like all others. Throws std::system_error when no thread can be had.
  std::unique_ptr<SerialQueue> makeSerialQueue(const std::string& label) override;
  std::unique_ptr<Timer> scheduleTimer(Seconds interval, Seconds tolerance,
                                       std::function<void()> tick) override;

  /// Drops all work of the serial queues that has not begun, and sends SIGTERM to the child
  /// processes of what is under way. Whether nothing is.
  bool abandonSerialQueues();

 private:
  std::shared_ptr<LinuxMainQueue> mainQueue_ = std::make_shared<LinuxMainQueue>();
  std::vector<std::shared_ptr<SerialWorker>> workers_;
};

}  // namespace zephlin
