#include "KeyboardService/Service/Evdev/KeyboardThread.h"

#include <pthread.h>
#include <sched.h>

#include <csignal>
#include <exception>
#include <utility>

namespace zephlin {
namespace {

/// For its lifetime the calling thread, and every thread that it starts, gets no signal.
class SignalsBlocked {
 public:
  SignalsBlocked() {
    sigset_t all;
    sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &former_);
  }
  SignalsBlocked(const SignalsBlocked&) = delete;
  SignalsBlocked& operator=(const SignalsBlocked&) = delete;
  ~SignalsBlocked() { ::pthread_sigmask(SIG_SETMASK, &former_, nullptr); }

 private:
  sigset_t former_;
};

/// So that keys are not late when the machine is busy. Everything works without it too.
void takeRealTimePriority() {
  sched_param parameters{};
  parameters.sched_priority = 1;  // Before ordinary threads, after other real-time ones.
  ::sched_setscheduler(0, SCHED_RR | SCHED_RESET_ON_FORK, &parameters);
}

}  // namespace

KeyboardThread::KeyboardThread(EventLoop& mainLoop, const std::string& name, Make make,
                               Callbacks callbacks)
    : mainLoop_(mainLoop),
      listener_(std::make_shared<Listener>(Listener{std::move(callbacks), nullptr})),
      listening_(listener_),
      make_(std::move(make)) {
  const SignalsBlocked signalsBlocked;
  thread_ = std::thread([this, name] { run(name); });
}

KeyboardThread::~KeyboardThread() {
  listener_.reset();
  stop();
  thread_.join();
}

void KeyboardThread::setRule(CapsLockRule rule) {
  loop_.post([this, rule] { handling_->setRule(rule); });
}

void KeyboardThread::check() {
  loop_.post([this] {
    handling_->check();
    tell([](Listener& listener) {
      if (!listener.ended) {
        listener.callbacks.checked();
      }
    });
  });
}

void KeyboardThread::lookAgain() {
  loop_.post([this] { handling_->check(); });
}

void KeyboardThread::end(std::function<void()> ended) {
  if (std::exchange(listener_->ended, std::move(ended)) == nullptr) {
    stop();
  }
}

void KeyboardThread::stop() {
  loop_.post([this] { loop_.stop(); });
}

void KeyboardThread::run(const std::string& name) noexcept {
  ::pthread_setname_np(::pthread_self(), name.substr(0, 15).c_str());
  takeRealTimePriority();
  std::string reason;
  try {
    handle();
  } catch (const std::exception& error) {
    reason = error.what();
  }
  handling_.reset();
  tell([reason](Listener& listener) {
    if (listener.ended) {
      listener.ended();
    } else {
      listener.callbacks.failed(reason);
    }
  });
}

void KeyboardThread::handle() {
  const auto report = [this](const KeyboardState& state) {
    tell([state](Listener& listener) {
      if (!listener.ended) {
        listener.callbacks.state(state);
      }
    });
  };
  const auto chord = [this] {
    tell([](Listener& listener) {
      if (!listener.ended) {
        listener.callbacks.emergencyChord();
      }
    });
  };
  handling_ = make_(loop_, report, chord);
  loop_.run();
}

/// Has the main loop call back, unless this object is destroyed by then.
void KeyboardThread::tell(std::function<void(Listener&)> what) {
  mainLoop_.post([listening = listening_, what = std::move(what)] {
    if (const auto listener = listening.lock()) {
      what(*listener);
    }
  });
}

}  // namespace zephlin
