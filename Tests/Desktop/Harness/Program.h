#pragma once

#include <map>
#include <string>
#include <vector>

#include "Tests/Support/Files.h"
#include "Tests/Support/TestProcess.h"

namespace zephlin::test {

using Environment = std::map<std::string, std::string>;

/// A program that runs beside the test in a process group of its own, with exactly this
/// environment. What it prints is appended to a file. The whole group is killed at the end, and the
/// program also when the test dies.
class Program {
 public:
  Program(const std::vector<std::string>& command, const Environment& environment,
          std::string logFile);
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;
  ~Program();

  [[nodiscard]] pid_t id() const { return id_; }
  void send(int signalNumber) const { process_.send(signalNumber); }

  /// What it has printed so far.
  [[nodiscard]] std::string log() const;
  [[nodiscard]] bool hasPrinted(const std::string& text) const;
  void waitForLog(const std::string& text) const;

  [[nodiscard]] bool hasEnded() const;
  /// Waits for the end and returns the exit status, or minus the signal's number. Call once.
  int waitForEnd();

 private:
  std::string logFile_;
  TestProcess process_;
  pid_t id_;
};

/// Replaces the environment of this process; for a child before it executes a program.
void becomeEnvironment(const Environment& environment);

/// Runs a program to its end with exactly this environment.
Outcome runIn(const Environment& environment, const std::vector<std::string>& command);

}  // namespace zephlin::test
