#include "KeyboardService/Service/SettlingWaits.h"

#include <utility>

namespace zephlin {

SettlingWaits::SettlingWaits(EventLoop& loop, KeyboardRegistry& registry,
                             std::chrono::milliseconds limit)
    : loop_(loop),
      registry_(registry),
      limit_(limit),
      reported_(loop.timer([this] { proceed(); })) {
  // From the loop: a report may come while the registry is being changed.
  registry_.onReported([this] { reported_.setDelay(std::chrono::microseconds::zero()); });
}

void SettlingWaits::ask(const KeyboardRegistry::IDs& keyboards, std::function<void()> settled) {
  registry_.check(keyboards);
  if (registry_.isSettled(keyboards)) {
    settled();
    return;
  }
  const Position wait = waits_.insert(waits_.end(), {keyboards, std::move(settled), {}});
  wait->limit = loop_.timer([this, wait] { giveUp(wait); });
  wait->limit.setDelay(limit_);
}

void SettlingWaits::proceed() {
  std::list<Wait> over;
  for (Position each = waits_.begin(); each != waits_.end();) {
    const Position wait = each++;
    if (registry_.isSettled(wait->keyboards)) {
      over.splice(over.end(), waits_, wait);
    }
  }
  for (const Wait& wait : over) {
    wait.settled();
  }
}

void SettlingWaits::giveUp(Position wait) {
  std::list<Wait> over;
  over.splice(over.end(), waits_, wait);
  registry_.giveUpOn(over.front().keyboards);
  over.front().settled();
}

}  // namespace zephlin
