#include "Tests/Support/TestProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <exception>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace zephlin::test {
namespace {

constexpr int timeoutMilliseconds = 60'000;

std::system_error failure(const char* what) {
  return {errno, std::generic_category(), what};
}

/// O_DIRECT makes each write a packet that one read returns.
Pipe makePacketPipe() {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC | O_DIRECT) != 0) {
    throw failure("pipe");
  }
  return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

[[noreturn]] void runBody(const TestProcess::Body& body) {
  int status = 0;
  try {
    body();
  } catch (const std::exception& error) {
    const std::string text = error.what();
    status = ::write(STDERR_FILENO, text.data(), text.size()) < 0 ? 124 : 125;
  }
  ::_exit(status);
}

/// Opened by the test's own user, so that a child that has become another user can still run it.
FileDescriptor openProgram(const std::string& path) {
  FileDescriptor program(::open(path.c_str(), O_PATH | O_CLOEXEC));
  if (!program.isOpen()) {
    throw failure(path.c_str());
  }
  return program;
}

}  // namespace

void PrintTo(const Outcome& outcome, std::ostream* stream) {
  *stream << "status " << outcome.status << "\noutput: " << outcome.output
          << "\nerrors: " << outcome.errors;
}

TestProcess::TestProcess(const Body& body) {
  Pipe output = makePipe();
  Pipe errors = makePacketPipe();
  id_ = ::fork();
  if (id_ < 0) {
    throw failure("fork");
  }
  if (id_ == 0) {
    ::dup2(::open("/dev/null", O_RDONLY | O_CLOEXEC), STDIN_FILENO);
    ::dup2(output.writeEnd.get(), STDOUT_FILENO);
    ::dup2(errors.writeEnd.get(), STDERR_FILENO);
    runBody(body);
  }
  outputPipe_ = std::move(output.readEnd);
  errorPipe_ = std::move(errors.readEnd);
}

TestProcess::TestProcess(const std::vector<std::string>& command, const Body& prepare)
    : TestProcess([&] {
        const FileDescriptor program = openProgram(command.front());
        prepare();
        std::vector<char*> arguments;
        arguments.reserve(command.size() + 1);
        for (const std::string& each : command) {
          arguments.push_back(const_cast<char*>(each.c_str()));
        }
        arguments.push_back(nullptr);
        ::fexecve(program.get(), arguments.data(), environ);
        throw failure(command.front().c_str());
      }) {}

TestProcess::~TestProcess() {
  if (id_ > 0) {
    ::kill(id_, SIGKILL);
    ::waitpid(id_, nullptr, 0);
  }
}

void TestProcess::send(int signalNumber) const {
  if (::kill(id_, signalNumber) != 0) {
    throw failure("kill");
  }
}

void TestProcess::waitForErrors(const std::string& text) {
  while (outcome_.errors.find(text) == std::string::npos) {
    if (!errorPipe_.isOpen()) {
      throw std::runtime_error("the child ended without writing \"" + text +
                               "\": " + outcome_.errors);
    }
    readSome();
  }
}

std::string TestProcess::waitForLine() {
  while (outcome_.output.find('\n') == std::string::npos) {
    if (!outputPipe_.isOpen()) {
      throw std::runtime_error("the child ended without writing a line: " + outcome_.errors);
    }
    readSome();
  }
  return outcome_.output.substr(0, outcome_.output.find('\n'));
}

void TestProcess::stopReading() {
  outputPipe_.close();
  errorPipe_.close();
}

Outcome TestProcess::wait() {
  while (outputPipe_.isOpen() || errorPipe_.isOpen()) {
    readSome();
  }
  int status = 0;
  if (::waitpid(std::exchange(id_, -1), &status, 0) < 0) {
    throw failure("waitpid");
  }
  outcome_.status = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  return outcome_;
}

void TestProcess::readSome() {
  std::array<pollfd, 2> pipes{pollfd{outputPipe_.get(), POLLIN, 0},
                              pollfd{errorPipe_.get(), POLLIN, 0}};
  if (::poll(pipes.data(), pipes.size(), timeoutMilliseconds) == 0) {
    throw std::runtime_error("the child neither writes nor ends; so far: " + outcome_.errors);
  }
  if (pipes[0].revents != 0 && !readFrom(outputPipe_, outcome_.output)) {
    outputPipe_.close();
  }
  if (pipes[1].revents != 0) {
    if (readFrom(errorPipe_, outcome_.errors)) {
      ++errorWrites_;
    } else {
      errorPipe_.close();
    }
  }
}

bool TestProcess::readFrom(const FileDescriptor& pipe, std::string& text) {
  std::array<char, 4096> chunk;
  const ssize_t count = ::read(pipe.get(), chunk.data(), chunk.size());
  if (count > 0) {
    text.append(chunk.data(), static_cast<std::size_t>(count));
  }
  return count > 0;
}

Outcome run(const std::vector<std::string>& command) {
  return TestProcess(command).wait();
}

}  // namespace zephlin::test
