#pragma once

#include <pthread.h>
#include <systemd/sd-event.h>

#include <chrono>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <vector>

#include "Base/FileDescriptor.h"

namespace zephlin {

/// Something that an EventLoop calls back for, until it is destroyed, which is allowed within its
/// own callback. It must not outlive the loop.
class EventSource {
 public:
  EventSource() = default;
  explicit EventSource(sd_event_source* source) : source_(source) {}

  void enable();
  void disable();
  [[nodiscard]] bool isEnabled() const;

  /// Its callback runs first when several are due.
  void putFirst();

  /// Only for a descriptor: EPOLLIN, EPOLLOUT or both. EPOLLHUP and EPOLLERR always call back.
  void setEvents(std::uint32_t events);

  /// Only for a timer: calls back once, after `delay` from now.
  void setDelay(std::chrono::microseconds delay);

  /// Only for a timer: calls back once, at `time` on the monotonic clock (clock_gettime(2)).
  void setTime(std::chrono::microseconds time);

 private:
  struct Release {
    void operator()(sd_event_source* source) const { sd_event_source_disable_unref(source); }
  };
  std::unique_ptr<sd_event_source, Release> source_;
};

/// A mutex that lends its owner the priority of a real-time thread that waits for it.
class PriorityInheritingMutex {
 public:
  PriorityInheritingMutex();
  PriorityInheritingMutex(const PriorityInheritingMutex&) = delete;
  PriorityInheritingMutex& operator=(const PriorityInheritingMutex&) = delete;
  ~PriorityInheritingMutex() { ::pthread_mutex_destroy(&mutex_); }

  void lock() { ::pthread_mutex_lock(&mutex_); }
  void unlock() { ::pthread_mutex_unlock(&mutex_); }

 private:
  pthread_mutex_t mutex_;
};

/// The loop of one thread, which alone may use it, except for `post`. Operations throw
/// std::system_error if the system refuses. An exception that leaves a callback ends `run`, which
/// throws it.
class EventLoop {
 public:
  EventLoop();
  EventLoop(const EventLoop&) = delete;
  EventLoop& operator=(const EventLoop&) = delete;
  ~EventLoop() = default;

  /// Owned by this loop.
  [[nodiscard]] sd_event* native() const { return event_.get(); }

  /// Calls back while any of `events` holds for the descriptor, which outlives the source.
  EventSource watch(int descriptor, std::uint32_t events,
                    std::function<void(std::uint32_t events)> callback);

  /// A timer that does nothing until it is given a delay.
  EventSource timer(std::function<void()> callback);

  /// Ends `run` with success when the signal arrives. Blocks the signal for the calling thread.
  void stopOnSignal(int signalNumber);

  /// Has `run` call the function, after those that were posted before. Any thread may post, before
  /// `run` as well. What `run` does not get to is destroyed with the loop.
  void post(std::function<void()> function);

  /// Returns when the loop is asked to stop.
  void run();

  /// Ends `run` with success once the present callback has returned.
  void stop();

 private:
  struct Callback;
  struct Trampoline;
  struct Unreference {
    void operator()(sd_event* event) const { sd_event_unref(event); }
  };

  void callPosted();

  std::unique_ptr<sd_event, Unreference> event_;
  std::exception_ptr failure_;
  PriorityInheritingMutex mutex_;
  std::vector<std::function<void()>> posted_;  ///< Guarded by the mutex.
  FileDescriptor wakeUp_;
  EventSource posts_;
};

}  // namespace zephlin
