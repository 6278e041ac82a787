#pragma once

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "KeyboardService/Service/Evdev/KeyboardThread.h"

namespace zephlin {

/// How a fake handling behaves.
struct HandlingProbeSettings {
  KeyboardState initial{KeyboardState::Kind::InForce, "fake"};
  bool failsToStart = false;
  std::shared_future<void> mayCheck;  ///< Until then a check blocks, if set.
  std::shared_future<void> mayEnd;    ///< Until then the destructor blocks, if set.
};

/// What a test sees of a fake handling, from another thread.
class HandlingProbe : public HandlingProbeSettings {
 public:
  HandlingProbe() = default;
  explicit HandlingProbe(const HandlingProbeSettings& settings) : HandlingProbeSettings(settings) {}

  void note(const std::string& event) {
    const std::scoped_lock lock(mutex_);
    events_.push_back(event);
  }

  [[nodiscard]] std::vector<std::string> events() const {
    const std::scoped_lock lock(mutex_);
    return events_;
  }

  /// Only for actions on the keyboard's thread.
  EventLoop* loop = nullptr;
  KeyboardHandling::Report report;
  std::function<void()> emergencyChord;

 private:
  mutable std::mutex mutex_;
  std::vector<std::string> events_;
};

class FakeKeyboardHandling final : public KeyboardHandling {
 public:
  explicit FakeKeyboardHandling(std::shared_ptr<HandlingProbe> probe) : probe_(std::move(probe)) {
    probe_->note("made");
    probe_->report(probe_->initial);
  }

  ~FakeKeyboardHandling() override {
    wait(probe_->mayEnd);
    probe_->note("ended");
  }

  void setRule(CapsLockRule rule) override {
    probe_->note("hold " + std::to_string(rule.hold.count()));
  }

  void check() override {
    wait(probe_->mayCheck);
    probe_->note("checked");
  }

 private:
  static void wait(const std::shared_future<void>& future) {
    if (future.valid()) {
      future.wait();
    }
  }

  std::shared_ptr<HandlingProbe> probe_;
};

inline KeyboardThread::Make makeFake(const std::shared_ptr<HandlingProbe>& probe) {
  return [probe](EventLoop& loop, KeyboardHandling::Report report,
                 std::function<void()> emergencyChord) -> std::unique_ptr<KeyboardHandling> {
    if (probe->failsToStart) {
      throw std::runtime_error("no luck");
    }
    probe->loop = &loop;
    probe->report = std::move(report);
    probe->emergencyChord = std::move(emergencyChord);
    return std::make_unique<FakeKeyboardHandling>(probe);
  };
}

/// Turns a loop until the condition holds, a minute at most.
inline void turnUntil(EventLoop& loop, const std::function<bool()>& condition) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (!condition() && std::chrono::steady_clock::now() < deadline) {
    sd_event_run(loop.native(), 10'000);
  }
  if (!condition()) {
    throw std::runtime_error("it does not happen");
  }
}

}  // namespace zephlin
