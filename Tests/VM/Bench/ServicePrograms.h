#pragma once

#include <signal.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace zephlin {

/// The running programs that pass a keyboard's keys on, by their names.
class ServicePrograms {
 public:
  explicit ServicePrograms(std::vector<std::string> names) : names_(std::move(names)) {}

  /// How often the system has switched away from one of their threads, and so to it.
  [[nodiscard]] long wakeUps() const {
    long count = 0;
    for (const auto& process : processes()) {
      for (const auto& thread : std::filesystem::directory_iterator(process / "task")) {
        count += number(thread.path() / "status", "voluntary_ctxt_switches:") +
                 number(thread.path() / "status", "nonvoluntary_ctxt_switches:");
      }
    }
    return count;
  }

  struct Memory {
    long resident = 0;
    long proportional = 0;
  };

  /// In KiB.
  [[nodiscard]] Memory memory() const {
    Memory memory;
    for (const auto& process : processes()) {
      memory.resident += number(process / "smaps_rollup", "Rss:");
      memory.proportional += number(process / "smaps_rollup", "Pss:");
    }
    return memory;
  }

  /// Ends them.
  void end() const {
    for (const auto& process : processes()) {
      ::kill(std::stoi(process.filename()), SIGTERM);
    }
  }

 private:
  /// Their folders in /proc. Throws std::runtime_error if one of them does not run.
  [[nodiscard]] std::vector<std::filesystem::path> processes() const {
    std::vector<std::filesystem::path> found;
    for (const std::string& name : names_) {
      const std::size_t others = found.size();
      for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        std::string running;
        if (std::getline(std::ifstream(entry.path() / "comm") >> std::ws, running) &&
            running == name.substr(0, longestName)) {
          found.push_back(entry.path());
        }
      }
      if (found.size() == others) {
        throw std::runtime_error(name + " has ended");
      }
    }
    return found;
  }

  static long number(const std::filesystem::path& file, const std::string& name) {
    std::ifstream stream(file);
    for (std::string word; stream >> word;) {
      long value = 0;
      if (word == name && stream >> value) {
        return value;
      }
    }
    throw std::runtime_error("no " + name + " in " + file.string());
  }

  /// The kernel's TASK_COMM_LEN without its end.
  static constexpr std::size_t longestName = 15;

  std::vector<std::string> names_;
};

}  // namespace zephlin
