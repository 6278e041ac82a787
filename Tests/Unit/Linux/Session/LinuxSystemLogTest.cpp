#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <syslog.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "Platform/Linux/Session/LinuxSystemLog.h"
#include "Tests/Support/InNewProcess.h"
#include "Tests/Support/TestProcess.h"

namespace {

std::mutex& syslogMutex() {
  static std::mutex mutex;
  return mutex;
}

/// What reached the functions below, which replace the C library's.
std::string& syslogged() {
  static std::string text;
  return text;
}

void record(int priority, const char* format, va_list arguments) {
  std::array<char, 8192> text;
  std::vsnprintf(text.data(), text.size(), format, arguments);
  const std::scoped_lock guard(syslogMutex());
  syslogged() += std::to_string(priority) + " " + text.data() + "|";
}

}  // namespace

extern "C" {

void openlog(const char* name, int option, int facility) {
  syslogged() += std::string(name) + (option == LOG_PID ? " with process" : "") +
                 (facility == LOG_USER ? " of user" : "") + "|";
}

void closelog() {}

void syslog(int priority, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  record(priority, format, arguments);
  va_end(arguments);
}

/// What _FORTIFY_SOURCE makes of a call of syslog.
void __syslog_chk(int priority, int /*flag*/, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  record(priority, format, arguments);
  va_end(arguments);
}

}  // extern "C"

namespace zephlin {
namespace {

TEST(LogEntryTest, APlainTextStaysAsItIs) {
  EXPECT_EQ(logEntry("Zephlin: größer\t…", 100), "Zephlin: größer\t…");
  EXPECT_EQ(logEntry("", 100), "");
}

TEST(LogEntryTest, FurtherLinesAreIndentedAndTheLastLineFeedsAreNotKept) {
  EXPECT_EQ(logEntry("first\nZephlin: second\n\n", 100), "first\n    Zephlin: second");
  EXPECT_EQ(logEntry("\n\r\n", 100), "");
}

TEST(LogEntryTest, OtherControlCharactersCannotReachATerminal) {
  EXPECT_EQ(logEntry(std::string("a\0b\x1b[2Jc\rd\x7f", 11), 100), "a?b?[2Jc?d?");
}

TEST(LogEntryTest, WhatIsTooLongIsCutBetweenCharacters) {
  EXPECT_EQ(logEntry("12345678", 8), "12345678");
  EXPECT_EQ(logEntry("123456789", 8), "12345…");
  EXPECT_EQ(logEntry("1234äöü", 8), "1234…");
  EXPECT_EQ(logEntry(std::string(1000000, '\n') + "x", 4095).size(), 4095U);
}

TEST(LinuxSystemLogTest, AnEntryIsOneLineOnStandardErrorInOneWrite) {
  test::TestProcess process([] { LinuxSystemLog().log("Zephlin: 100%s n\n"); });
  EXPECT_EQ(process.wait().errors, "Zephlin: 100%s n\n");
  EXPECT_EQ(process.errorWrites(), 1);
}

TEST(LinuxSystemLogTest, AnEntryGoesToTheSystemsLogWhateverItLooksLike) {
  EXPECT_EQ(test::inNewProcess([] {
              LinuxSystemLog().log("Zephlin: 100%s %n\nsecond");
              return syslogged();
            }),
            "Zephlin with process of user|5 Zephlin: 100%s %n\n    second|");
}

TEST(LinuxSystemLogTest, EntriesOfManyThreadsAreNotMixed) {
  constexpr int entries = 200;
  test::TestProcess process([] {
    LinuxSystemLog log;
    std::vector<std::thread> threads;
    for (const char letter : {'a', 'b', 'c', 'd'}) {
      threads.emplace_back([&log, letter] {
        for (int index = 0; index < entries; ++index) {
          log.log(std::string(50, letter));
          std::this_thread::sleep_for(std::chrono::microseconds(50));
        }
      });
    }
    for (std::thread& thread : threads) {
      thread.join();
    }
  });
  const std::string errors = process.wait().errors;
  EXPECT_EQ(errors.size(), 4U * entries * 51U);
  for (std::size_t line = 0; line + 51 <= errors.size(); line += 51) {
    EXPECT_EQ(errors.substr(line, 51), std::string(50, errors[line]) + "\n");
  }
}

TEST(LinuxSystemLogTest, AClosedStandardErrorDoesNoHarm) {
  EXPECT_EQ(test::inNewProcess([] {
              ::close(STDERR_FILENO);
              LinuxSystemLog log;
              Pipe taken = makePipe();
              ::dup2(taken.writeEnd.get(), STDERR_FILENO);
              ::fcntl(taken.readEnd.get(), F_SETFL, O_NONBLOCK);
              log.log("not for whatever has its number now");
              char byte = 0;
              return std::string(::read(taken.readEnd.get(), &byte, 1) == -1 ? "quiet" : "wrote");
            }),
            "quiet");
}

TEST(LinuxSystemLogTest, APipeThatNobodyReadsNeitherKillsNorLeavesASignalPending) {
  EXPECT_EQ(test::inNewProcess([] {
              ::signal(SIGPIPE, SIG_DFL);
              Pipe pipe = makePipe();
              ::dup2(pipe.writeEnd.get(), STDERR_FILENO);
              LinuxSystemLog log;
              pipe.readEnd.close();
              log.log("nobody");
              return std::string("alive");
            }),
            "alive");
}

TEST(LinuxSystemLogTest, AFullPipeDoesNotHang) {
  EXPECT_EQ(test::inNewProcess([] {
              const Pipe pipe = makePipe();
              ::dup2(pipe.writeEnd.get(), STDERR_FILENO);
              LinuxSystemLog log;
              for (int index = 0; index < 1000; ++index) {
                log.log(std::string(4000, 'x'));
              }
              return std::string("done");
            }),
            "done");
}

TEST(LinuxSystemLogTest, ASocketThatIsFullOrBrokenDoesNoHarm) {
  EXPECT_EQ(test::inNewProcess([] {
              std::array<int, 2> ends{};
              ::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data());
              ::dup2(ends[0], STDERR_FILENO);
              LinuxSystemLog log;
              for (int index = 0; index < 1000; ++index) {
                log.log(std::string(4000, 'x'));
              }
              std::array<char, 4> start{};
              const ssize_t count = ::read(ends[1], start.data(), start.size());
              ::close(ends[1]);
              log.log("nobody");
              return std::string(start.data(), static_cast<std::size_t>(count));
            }),
            "xxxx");
}

}  // namespace
}  // namespace zephlin
