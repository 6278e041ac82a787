// Prints what keys cost in the virtual machine, way by way (Way.h); not a test.

#include <cstdio>
#include <iostream>
#include <string>

#include "Tests/VM/Bench/InstructionMachine.h"
#include "Tests/VM/RunProgram.h"

namespace zephlin {
namespace {

constexpr int keys = 500;
constexpr int taps = 20;
constexpr int idleSeconds = 60;

void print(const std::string& way, const nlohmann::json& figures) {
  const auto value = [&figures](const char* name, double unit) {
    return figures.value(name, 0.0) / unit;
  };
  std::printf("%-19s %6.2f %6.2f %6.2f %6.2f %5.0f %8.2f %9.1f %5.0f %5.0f %5.0f\n", way.c_str(),
              value("key10", 1e3), value("key50", 1e3), value("key99", 1e3),
              value("key10", 1e3) - value("alone10", 1e3), value("keyWakeUps", 1),
              value("unlocking50", 1e6), value("start", 1e6), value("idleWakeUps", 1),
              value("proportional", 1), value("resident", 1));
  std::fflush(stdout);
}

void measure() {
  InstructionMachine machine;
  std::printf(
      "key: the press of an ordinary key, from sending to reading, in thousands of instructions, "
      "and what the way adds to the same keyboard's p10\n"
      "wake-ups: of the way's programs, in %d presses and releases and in an idle minute\n"
      "unlock: from the press of Caps Lock, held for 80 ms, until the lock is off, in millions of "
      "instructions\n"
      "start: of the way's programs until the first key comes their way, in milliseconds\n"
      "memory: of the way's programs, in KiB\n\n"
      "                    key                         wake-  unlock     start  idle memory\n"
      "                       p10    p50    p99  added   ups                    w.-u.   PSS   "
      "RSS\n",
      2 * keys);
  for (const char* const way : {"alone", "watched", "grabbed", "floor"}) {
    print(way, machine.measure(way, keys, taps, idleSeconds));
  }
  if (machine.has("caps2esc")) {
    print("interception-tools", machine.measure("interception-tools", keys, taps, idleSeconds));
  }
  if (machine.has("keyd")) {
    print("keyd", machine.measure("keyd", keys, taps, idleSeconds));
  }
}

}  // namespace
}  // namespace zephlin

int main() {
  return zephlin::runProgram(zephlin::measure);
}
