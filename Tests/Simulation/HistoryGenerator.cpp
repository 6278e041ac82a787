#include <array>
#include <random>
#include <span>
#include <string>
#include <utility>

#include "Tests/Simulation/History.h"

namespace zephlin {

namespace {

/// Appends events, each some time after the one before. Distributions of the standard library
/// differ between libraries, so numbers are drawn by hand.
class Generator {
 public:
  explicit Generator(std::uint64_t seed) : random_(seed) {}

  History upTo(std::int64_t end) {
    while (true) {
      now_ += pause();
      if (now_ >= end) {
        return std::move(history_);
      }
      burst();
    }
  }

 private:
  std::int64_t below(std::int64_t limit) {
    return static_cast<std::int64_t>(random_() % static_cast<std::uint64_t>(limit));
  }

  const char* oneOf(std::span<const char* const> choices) {
    return choices[static_cast<std::size_t>(below(static_cast<std::int64_t>(choices.size())))];
  }

  /// Between bursts, seven minutes on average, which is about seven events' time.
  std::int64_t pause() { return below(840'000); }
  void waitUpTo(std::int64_t milliseconds) { now_ += 1 + below(milliseconds); }
  void happen(std::string action) { history_.push_back({now_, std::move(action)}); }

  void burst() {
    for (std::int64_t left = 1 + below(6); left > 0; --left) {
      something();
      waitUpTo(below(2) == 0 ? 500 : 6000);
    }
  }

  void something() {
    switch (below(12)) {
      case 0:
      case 1:
      case 2:
        devices();
        break;
      case 3:
        sleep();
        break;
      case 4:
      case 5:
        faults();
        break;
      case 6:
      case 7:
      case 8:
      case 9:
        menu();
        break;
      case 10:
        tapTest();
        break;
      default:
        surroundings();
        break;
    }
  }

  void devices() {
    static constexpr std::array actions = {"plug",   "plug",   "plug stubborn", "unplug",
                                           "unplug", "unplug", "attach",        "attach"};
    happen(oneOf(actions));
  }

  void sleep() { happen("wake " + std::to_string(1 + below(30'000))); }

  void faults() {
    static constexpr std::array kinds = {"exit 1", "exit 77", "hang",
                                         "launch", "garbage", "nonsense"};
    if (below(3) == 0) {
      happen("clear-faults");
      return;
    }
    std::string action = std::string("fault ") + (below(2) == 0 ? "set " : "get ") + oneOf(kinds);
    if (below(4) != 0) {
      action += " " + std::to_string(1 + below(6));
    }
    happen(action);
  }

  void menu() {
    static constexpr std::array titles = {
        "Instant Caps Lock", "Instant Caps Lock", "Instant Caps Lock",
        "Re-apply Now",      "Re-apply Now",      "Start at Login",
        "About Zephlin",     "Quit Zephlin",      "Check for Updates\u2026",
    };
    happen("open-menu");
    waitUpTo(below(4) == 0 ? 15'000 : 1500);
    if (below(6) == 0) {
      happen("close-menu");
    } else {
      happen(std::string("click ") + oneOf(titles));
    }
  }

  void tapTest() {
    static constexpr std::array actions = {"tap",      "tap",      "tap",
                                           "tap-lost", "modifier", "press Reset"};
    happen("open-menu");
    waitUpTo(1000);
    happen("click Tap Test\u2026");
    for (std::int64_t left = below(10); left > 0; --left) {
      waitUpTo(800);
      happen(oneOf(actions));
    }
    waitUpTo(2000);
    happen("close-window");
  }

  void surroundings() {
    static constexpr std::array actions = {
        "jump 3600",      "jump -7200",     "late 0",       "late 0.2",    "late 2.5",
        "late 0",         "taps refused",   "taps allowed", "login fails", "login needs-approval",
        "inputs refused", "inputs allowed", "login works",  "dismiss",     "destroy",
        "destroy",
    };
    const std::string action = oneOf(actions);
    happen(action);
    if (action == "destroy") {
      waitUpTo(20'000);
      happen("launch");
      waitUpTo(20'000);
      happen("launch");
    }
  }

  std::mt19937_64 random_;
  std::int64_t now_ = 0;
  History history_;
};

}  // namespace

History generateHistory(std::uint64_t seed, double days) {
  constexpr double millisecondsPerDay = 86'400'000;
  return Generator(seed).upTo(static_cast<std::int64_t>(days * millisecondsPerDay));
}

}  // namespace zephlin
