#pragma once

#include <QObject>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Platform/Dispatch.h"

namespace zephlin {

class SerialWorker;

class LinuxClock final : public Clock {
 public:
  [[nodiscard]] WallTime now() const override { return std::chrono::system_clock::now(); }
};

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
  LinuxDispatch();
  LinuxDispatch(const LinuxDispatch&) = delete;
  LinuxDispatch& operator=(const LinuxDispatch&) = delete;
  ~LinuxDispatch() override;

  std::shared_ptr<MainQueue> mainQueue() override { return mainQueue_; }
  /// Each queue has a thread, which carries the end of the label as its name and begins its first
  /// work after the event loop's next turn. The kernel schedules it like all others. Throws
  /// std::system_error if no thread can be started.
  std::unique_ptr<SerialQueue> makeSerialQueue(const std::string& label) override;
  std::unique_ptr<Timer> scheduleTimer(Seconds interval, Seconds tolerance,
                                       std::function<void()> tick) override;

  /// Drops all work of the serial queues that has not begun, and sends SIGTERM to the child
  /// processes of the work that is running. Returns whether none is running.
  bool abandonSerialQueues();

 private:
  std::shared_ptr<LinuxMainQueue> mainQueue_ = std::make_shared<LinuxMainQueue>();
  std::vector<std::shared_ptr<SerialWorker>> workers_;
};

}  // namespace zephlin
