#include "KeyboardService/Service/EventLoop.h"

#include <sys/epoll.h>
#include <sys/eventfd.h>

#include <cerrno>
#include <csignal>
#include <ctime>
#include <mutex>
#include <system_error>
#include <utility>

namespace zephlin {
namespace {

int checked(int result, const char* what) {
  if (result < 0) {
    throw std::system_error(-result, std::generic_category(), what);
  }
  return result;
}

}  // namespace

void EventSource::enable() {
  checked(sd_event_source_set_enabled(source_.get(), SD_EVENT_ON), "enabling an event source");
}

void EventSource::disable() {
  checked(sd_event_source_set_enabled(source_.get(), SD_EVENT_OFF), "disabling an event source");
}

bool EventSource::isEnabled() const {
  return sd_event_source_get_enabled(source_.get(), nullptr) > 0;
}

void EventSource::putFirst() {
  checked(sd_event_source_set_priority(source_.get(), SD_EVENT_PRIORITY_IMPORTANT),
          "putting an event source first");
}

void EventSource::setEvents(std::uint32_t events) {
  checked(sd_event_source_set_io_events(source_.get(), events), "watching a descriptor");
}

void EventSource::setDelay(std::chrono::microseconds delay) {
  checked(
      sd_event_source_set_time_relative(source_.get(), static_cast<std::uint64_t>(delay.count())),
      "setting a timer");
  checked(sd_event_source_set_enabled(source_.get(), SD_EVENT_ONESHOT), "starting a timer");
}

void EventSource::setTime(std::chrono::microseconds time) {
  checked(sd_event_source_set_time(source_.get(), static_cast<std::uint64_t>(time.count())),
          "setting a timer");
  checked(sd_event_source_set_enabled(source_.get(), SD_EVENT_ONESHOT), "starting a timer");
}

/// What sd-event keeps for a source. It is freed by sd-event, which does so only after a callback
/// that is under way has returned.
struct EventLoop::Callback {
  EventLoop& loop;
  std::function<void(std::uint32_t events)> function;
};

/// The functions that sd-event calls. No exception may pass through it.
struct EventLoop::Trampoline {
  static int call(void* userData, std::uint32_t events) noexcept {
    auto& callback = *static_cast<Callback*>(userData);
    EventLoop& loop = callback.loop;
    try {
      callback.function(events);
    } catch (...) {
      loop.failure_ = std::current_exception();
      sd_event_exit(loop.native(), 1);
    }
    return 0;
  }

  static int io(sd_event_source* /*source*/, int /*fd*/, std::uint32_t events, void* userData) {
    return call(userData, events);
  }

  static int time(sd_event_source* /*source*/, std::uint64_t /*time*/, void* userData) {
    return call(userData, 0);
  }

  static void destroy(void* userData) { delete static_cast<Callback*>(userData); }

  /// Hands the callback over to a source that was just made.
  static EventSource adopt(sd_event_source* source, std::unique_ptr<Callback> callback) {
    EventSource result(source);
    checked(sd_event_source_set_destroy_callback(source, destroy), "keeping a callback");
    static_cast<void>(callback.release());
    return result;
  }
};

PriorityInheritingMutex::PriorityInheritingMutex() {
  pthread_mutexattr_t attributes;
  ::pthread_mutexattr_init(&attributes);
  ::pthread_mutexattr_setprotocol(&attributes, PTHREAD_PRIO_INHERIT);
  const int error = ::pthread_mutex_init(&mutex_, &attributes);
  ::pthread_mutexattr_destroy(&attributes);
  checked(-error, "making a mutex");
}

EventLoop::EventLoop() : wakeUp_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  checked(wakeUp_.isOpen() ? 0 : -errno, "making an event loop");
  sd_event* event = nullptr;
  checked(sd_event_new(&event), "making an event loop");
  event_.reset(event);
  posts_ = watch(wakeUp_.get(), EPOLLIN, [this](std::uint32_t) { callPosted(); });
}

EventSource EventLoop::watch(int descriptor, std::uint32_t events,
                             std::function<void(std::uint32_t events)> function) {
  auto callback = std::make_unique<Callback>(Callback{*this, std::move(function)});
  sd_event_source* source = nullptr;
  checked(sd_event_add_io(native(), &source, descriptor, events, Trampoline::io, callback.get()),
          "watching a descriptor");
  return Trampoline::adopt(source, std::move(callback));
}

EventSource EventLoop::timer(std::function<void()> function) {
  auto callback = std::make_unique<Callback>(
      Callback{*this, [run = std::move(function)](std::uint32_t) { run(); }});
  sd_event_source* source = nullptr;
  // Left to itself, sd-event may be late by a quarter of a second.
  constexpr std::uint64_t latenessInMicroseconds = 1;
  checked(sd_event_add_time(native(), &source, CLOCK_MONOTONIC, UINT64_MAX, latenessInMicroseconds,
                            Trampoline::time, callback.get()),
          "making a timer");
  return Trampoline::adopt(source, std::move(callback));
}

void EventLoop::stopOnSignal(int signalNumber) {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, signalNumber);
  checked(-::pthread_sigmask(SIG_BLOCK, &signals, nullptr), "blocking a signal");
  // Without a callback of our own, sd-event ends the loop with the number that it is given.
  checked(sd_event_add_signal(native(), nullptr, signalNumber, nullptr, nullptr),
          "waiting for a signal");
}

void EventLoop::post(std::function<void()> function) {
  const std::scoped_lock lock(mutex_);
  posted_.push_back(std::move(function));
  ::eventfd_write(wakeUp_.get(), 1);
}

void EventLoop::callPosted() {
  std::vector<std::function<void()>> functions;
  {
    const std::scoped_lock lock(mutex_);
    eventfd_t count = 0;
    ::eventfd_read(wakeUp_.get(), &count);
    functions.swap(posted_);
  }
  for (const auto& each : functions) {
    each();
  }
}

void EventLoop::stop() {
  checked(sd_event_exit(native(), 0), "stopping the event loop");
}

void EventLoop::run() {
  const int result = sd_event_loop(native());
  if (failure_) {
    std::rethrow_exception(std::exchange(failure_, nullptr));
  }
  checked(result, "running the event loop");
}

}  // namespace zephlin
