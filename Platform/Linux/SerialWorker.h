#pragma once

#include <sys/types.h>

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace zephlin {

/// A thread that works off a queue in order, once it has been told to begin. Any thread may use it.
class SerialWorker {
 public:
  /// The thread carries as much of the label as the kernel keeps.
  explicit SerialWorker(const std::string& label);
  SerialWorker(const SerialWorker&) = delete;
  SerialWorker& operator=(const SerialWorker&) = delete;
  /// Waits until all that was posted has run.
  ~SerialWorker();

  void post(std::function<void()> work);
  void begin();
  /// Lets the thread end once all that was posted has run; it begins now if it has not yet.
  void close();
  /// Drops all that was posted and has not begun, and sends SIGTERM to the child processes of what
  /// is under way. Whether nothing is.
  bool abandon();

 private:
  void run(const std::string& label);
  /// Waits for the next piece of work. None when there is nothing more to come.
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

}  // namespace zephlin
