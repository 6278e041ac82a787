// Measures in the virtual machine what one way of keys costs (Way.h), on a keyboard that it makes.
// MeasureKeys WAY KEYS TAPS SECONDS types so many keys before and after the way is in force, taps
// Caps Lock so often, and leaves the keyboard alone for so long. Prints the figures as JSON, or on
// failure the reason and what the programs have printed. Times are in nanoseconds of the machine's
// clock.

#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "Tests/VM/Bench/HidKeyboard.h"
#include "Tests/VM/Bench/KeyReader.h"
#include "Tests/VM/Bench/ServicePrograms.h"
#include "Tests/VM/Bench/Way.h"
#include "Tests/VM/JudgeSeat.h"

namespace zephlin {
namespace {

using Clock = HidKeyboard::Clock;

/// Enough for every program to be done with a key and asleep again.
constexpr auto pause = 500us;

/// Enough for udev and the programs that it wakes.
constexpr auto longPause = 1s;

constexpr auto longestWait = 10s;

/// How long Caps Lock is held.
constexpr auto holdTime = 80ms;

constexpr const char* logPath = "/tmp/programs.log";

void runCommand(const std::string& command) {
  if (std::system(("{ " + command + "\n} >>" + logPath + " 2>&1").c_str()) != 0) {
    throw std::runtime_error(command + " has failed");
  }
}

class Measurement {
 public:
  explicit Measurement(const Way& way)
      : way_(way), keyboard_(way.keyboardHasLeds), programs_(way.programs) {
    runCommand("udevadm settle");
    original_.emplace(path(KeyReader::Kind::Keyboard));
    ::setenv("KEYBOARD", path(KeyReader::Kind::Keyboard).c_str(), 1);
  }

  /// From the start of the programs until the keyboard works their way.
  double start() {
    original_->setLed(true);
    runCommand(way_.prepare);
    std::this_thread::sleep_for(longPause);
    const auto start = Clock::now();
    runCommand(way_.start);
    while (!isInForce()) {
      if (Clock::now() - start > longestWait) {
        throw std::runtime_error("no key has come this way within ten seconds");
      }
      std::this_thread::sleep_for(1ms);
    }
    const auto end = Clock::now();
    original_->setLed(false);
    runCommand("udevadm settle");
    std::this_thread::sleep_for(longPause);
    return count(end - start);
  }

  [[nodiscard]] bool canTapCapsLock() const { return way_.capsLock != Way::CapsLock::AnotherKey; }

  /// From before the keyboard sends the press of an ordinary key until a program has read it.
  std::vector<double> typeKeys(int count) {
    std::vector<double> delays;
    for (int key = 0; key < count; ++key) {
      delays.push_back(delayOf(Usage::A, 1));
      delayOf(Usage::None, 0);
    }
    return delays;
  }

  /// From the press of Caps Lock that switches the lock off until it is off.
  double tapCapsLock() {
    takeUntil(keyboard_.hold(Usage::CapsLock) + pause);
    takeUntil(keyboard_.hold(Usage::None) + pause);
    if (!seat_.isLocked()) {
      throw std::runtime_error("the lock stays off");
    }
    reader().setLed(true);
    const auto start = keyboard_.hold(Usage::CapsLock);
    auto end = takeUntil(start + holdTime);
    keyboard_.hold(Usage::None);
    if (!end) {
      end = takeUntil(Clock::now() + longestWait);
    }
    if (!end) {
      throw std::runtime_error("the lock stays on");
    }
    reader().setLed(false);
    return count(*end - start);
  }

  [[nodiscard]] const ServicePrograms& programs() const { return programs_; }

 private:
  double delayOf(Usage usage, int value) {
    std::this_thread::sleep_for(pause);
    const auto start = keyboard_.hold(usage);
    const auto key = reader().receive(start + longestWait);
    const auto end = Clock::now();
    if (!key || key->code != KEY_A || key->value != value) {
      throw std::runtime_error(key ? "another key came than the one that was sent"
                                   : "a key did not come");
    }
    return count(end - start);
  }

  static double count(Clock::duration time) { return static_cast<double>(time / 1ns); }

  static std::string path(KeyReader::Kind kind) {
    return KeyReader::find(kind).value_or("the keyboard");
  }

  KeyReader& reader() { return clone_ ? *clone_ : *original_; }

  /// Whether a key comes through the clone or, without one, Caps Lock acts at the press if it
  /// should.
  bool isInForce() {
    if (way_.readFrom == KeyReader::Kind::Keyboard) {
      return way_.capsLock != Way::CapsLock::Instant || isInstant();
    }
    if (!clone_) {
      const auto found = KeyReader::find(KeyReader::Kind::Clone);
      if (!found) {
        return false;
      }
      clone_.emplace(*found);
    }
    keyboard_.hold(Usage::A);
    const auto until = keyboard_.hold(Usage::None) + 1ms;
    return clone_->receive(until) && clone_->receive(until);
  }

  bool isInstant() {
    keyboard_.hold(Usage::CapsLock);
    const auto until = Clock::now() + 10ms;
    while (const auto key = original_->receive(until)) {
      if (key->code == KEY_CAPSLOCK && key->value == 0) {
        keyboard_.hold(Usage::None);
        return true;
      }
    }
    keyboard_.hold(Usage::None);
    return false;
  }

  /// Takes the keys that come until then, and returns when one has changed the lock.
  std::optional<Clock::time_point> takeUntil(Clock::time_point until) {
    std::optional<Clock::time_point> changed;
    const bool wasLocked = seat_.isLocked();
    while (const auto key = reader().receive(until)) {
      seat_.key(key->code, key->value == 1);
      if (seat_.isLocked() != wasLocked && !changed) {
        changed = Clock::now();
      }
    }
    return changed;
  }

  const Way& way_;
  HidKeyboard keyboard_;
  ServicePrograms programs_;
  Seat seat_{""};
  std::optional<KeyReader> original_;
  std::optional<KeyReader> clone_;
};

double quantile(std::vector<double> values, double part) {
  std::sort(values.begin(), values.end());
  return values[static_cast<std::size_t>(part * static_cast<double>(values.size() - 1))];
}

/// For every other press or so, whatever the way, the kernel looks through its timers to start that
/// of the repetition, which is a twelfth of what a key costs. So the median tells how often it does
/// that, and ways are compared by presses that come without it.
constexpr double plainKey = 0.1;

nlohmann::json measure(const Way& way, int keyCount, int taps, int idleSeconds) {
  silenceConsole();
  Measurement measurement(way);
  const auto& programs = measurement.programs();
  nlohmann::json figures;
  figures["alone10"] = quantile(measurement.typeKeys(keyCount), plainKey);
  figures["start"] = measurement.start();

  long before = programs.wakeUps();
  const auto keys = measurement.typeKeys(keyCount);
  figures["keyWakeUps"] = programs.wakeUps() - before;
  figures["key10"] = quantile(keys, plainKey);
  figures["key50"] = quantile(keys, 0.5);
  figures["key99"] = quantile(keys, 0.99);

  if (measurement.canTapCapsLock()) {
    std::vector<double> unlocking;
    for (int tap = 0; tap < taps; ++tap) {
      unlocking.push_back(measurement.tapCapsLock());
    }
    figures["unlocking50"] = quantile(unlocking, 0.5);
    figures["unlocking100"] = quantile(unlocking, 1);
  }

  std::this_thread::sleep_for(longPause);
  before = programs.wakeUps();
  std::this_thread::sleep_for(std::chrono::seconds(idleSeconds));
  figures["idleWakeUps"] = programs.wakeUps() - before;
  const auto memory = programs.memory();
  figures["resident"] = memory.resident;
  figures["proportional"] = memory.proportional;
  programs.end();
  return figures;
}

}  // namespace
}  // namespace zephlin

int main(int /*argumentCount*/, char** arguments) {
  std::ofstream(zephlin::logPath, std::ios::trunc);
  try {
    const auto& way = zephlin::wayNamed(arguments[1]);
    std::cout << zephlin::measure(way, std::stoi(arguments[2]), std::stoi(arguments[3]),
                                  std::stoi(arguments[4]))
              << '\n';
    return 0;
  } catch (const std::exception& error) {
    std::cout << error.what() << '\n' << std::ifstream(zephlin::logPath).rdbuf();
    return 1;
  }
}
