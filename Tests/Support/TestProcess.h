#pragma once

#include <sys/types.h>

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "Base/FileDescriptor.h"

namespace zephlin::test {

/// How a child process ended and what it wrote.
struct Outcome {
  int status = 0;  ///< The exit status, or minus the number of the signal that ended the process.
  std::string output;
  std::string errors;

  bool operator==(const Outcome&) const = default;
};

/// For the messages of failed expectations.
void PrintTo(const Outcome& outcome, std::ostream* stream);

/// A child process with an empty standard input and pipes for its standard output and error. It is
/// killed if it still runs at the end. Waiting throws std::runtime_error after a minute.
class TestProcess {
 public:
  /// Runs in the child. What it throws ends the child with status 125 and the text on its standard
  /// error; returning ends it with status 0.
  using Body = std::function<void()>;

  explicit TestProcess(const Body& body);

  /// Runs a program, after `prepare` in the child.
  explicit TestProcess(
      const std::vector<std::string>& command, const Body& prepare = [] {});

  TestProcess(const TestProcess&) = delete;
  TestProcess& operator=(const TestProcess&) = delete;
  ~TestProcess();

  [[nodiscard]] pid_t id() const { return id_; }

  void send(int signalNumber) const;

  /// Waits until the child has written `text` on standard error.
  void waitForErrors(const std::string& text);

  /// Waits for the first line on standard output and returns it without its line feed.
  std::string waitForLine();

  /// Closes the reading ends of both pipes, as a reader that goes away does.
  void stopReading();

  /// How many times the child has written to standard error so far, pieces of up to 4096 bytes.
  [[nodiscard]] int errorWrites() const { return errorWrites_; }

  /// Waits for the end.
  Outcome wait();

 private:
  void readSome();
  static bool readFrom(const FileDescriptor& pipe, std::string& text);

  pid_t id_ = -1;
  FileDescriptor outputPipe_;
  FileDescriptor errorPipe_;
  Outcome outcome_;
  int errorWrites_ = 0;
};

/// Runs a program to its end.
Outcome run(const std::vector<std::string>& command);

}  // namespace zephlin::test
