#include "KeyboardService/Service/Evdev/RepeatBlocker.h"

#include <utility>

namespace zephlin {
namespace {

constexpr InputEvent press{EV_KEY, KEY_CAPSLOCK, KeyPressed};
constexpr InputEvent release{EV_KEY, KEY_CAPSLOCK, KeyReleased};

}  // namespace

RepeatBlocker::RepeatBlocker(const std::string& path, HardwareRepeat& repeat,
                             ReadWatched readWatched)
    : node_(path), repeat_(repeat), readWatched_(std::move(readWatched)) {
  node_.letIn(EV_SYN, {});
}

bool RepeatBlocker::block() {
  const auto leds = node_.leds();
  discard();
  if (!node_.grab()) {
    return false;
  }
  GrabbedMoment moment(repeat_);
  node_.letIn(EV_SYN, {EV_KEY, EV_MSC});
  readWatched_();  // What came before the grab.
  if (repeat_.deadline()) {
    node_.write({press, endOfFrame});
    repeat_.blocked(true);
    readAll(moment);
    if (moment.isPressLeft()) {
      node_.write({release, endOfFrame});
    }
  }
  node_.ungrab();
  readAll(moment);
  const auto firstSeen = readWatched_();
  write(moment.missed(firstSeen));
  node_.letIn(EV_SYN, {});
  if (moment.isUp()) {
    repeat_.blocked(false);
  }
  // The end of a grab makes the text console set the LEDs to its own idea of them, even while a
  // desktop is shown.
  const auto after = node_.leds();
  for (std::uint16_t code = 0; code < LED_CNT; ++code) {
    if (after[code] != leds[code]) {
      node_.write({{EV_LED, code, leds[code] ? 1 : 0}, endOfFrame});
    }
  }
  return true;
}

void RepeatBlocker::readAll(GrabbedMoment& moment) {
  node_.readAll([&](const InputEvent& event, Time time) { moment.take(event, time); });
}

void RepeatBlocker::discard() {
  node_.readAll([](const InputEvent&, Time) {});
}

void RepeatBlocker::write(const GrabbedMoment::Events& events) {
  for (const InputEvent& event : events) {
    node_.write({event});
  }
}

}  // namespace zephlin
