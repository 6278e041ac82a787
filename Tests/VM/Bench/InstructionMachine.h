#pragma once

#include <nlohmann/json.hpp>

#include <stdexcept>
#include <string>

#include "Tests/VM/VirtualMachine.h"

namespace zephlin {

/// A virtual machine whose clock counts instructions, one a nanosecond, so that times in it do not
/// depend on the host.
class InstructionMachine {
 public:
  InstructionMachine() { machine_.output("modprobe uhid"); }

  [[nodiscard]] bool has(const std::string& program) {
    return machine_.run("command -v " + program).status == 0;
  }

  /// Runs MeasureKeys; the figures that it prints. Throws std::runtime_error with its output if it
  /// fails.
  nlohmann::json measure(const std::string& way, int keys, int taps, int idleSeconds) {
    const auto outcome =
        machine_.run("MeasureKeys " + way + ' ' + std::to_string(keys) + ' ' +
                     std::to_string(taps) + ' ' + std::to_string(idleSeconds) + " 2>&1");
    if (outcome.status != 0) {
      throw std::runtime_error(way + ": " + outcome.output);
    }
    return nlohmann::json::parse(outcome.output);
  }

 private:
  VirtualMachine machine_{VIRTUAL_MACHINE_IMAGES, {.instructionShift = 0, .skipsIdleTime = true}};
};

}  // namespace zephlin
