// Compares HidUtilOutputParser::parse with a plain counting pass over the same bytes, and with
// mawk counting the same rows.

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "Tests/Bench/CountLineFeeds.h"
#include "Tests/Bench/Ratio.h"
#include "ZephlinCore/HidUtilOutputParser.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* mawkProgram =
    R"awk(NF >= 3 && $1 != "RegistryID" {
         if ($3 == "(null)" || $3 == "<null>") d++; else if ($3 == 0) i++; else o++ }
       END { print i, d, o })awk";

std::string listing(std::size_t rows) {
  constexpr const char* values[] = {"0", "75", "(null)", "-1"};
  std::string text = "RegistryID   Key                     Value\n";
  for (std::size_t row = 0; row < rows; ++row) {
    char line[80];
    std::snprintf(line, sizeof line, "%-12zx CapsLockDelayOverride   %s\n",
                  std::size_t{0x100000001} + row, values[row % 4]);
    text += line;
  }
  return text;
}

/// Seconds per call, over as many calls as take a few milliseconds.
template <typename Work>
double secondsPerCall(std::size_t rows, Work work) {
  const std::size_t calls = std::max<std::size_t>(1, 100000 / rows);
  const auto begin = Clock::now();
  for (std::size_t call = 0; call < calls; ++call) {
    work();
  }
  return std::chrono::duration<double>(Clock::now() - begin).count() / static_cast<double>(calls);
}

/// Keeps the result of a measured call, so that the compiler cannot remove the call.
volatile std::size_t sink;

void runMawk(const char* path) {
  const char* const arguments[] = {"mawk", mawkProgram, path, nullptr};
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t child = -1;
  int status = 0;
  const int error = ::posix_spawnp(&child, "mawk", &actions, nullptr,
                                   const_cast<char* const*>(arguments), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  if (error != 0 || ::waitpid(child, &status, 0) != child || status != 0) {
    std::fputs("ParserBenchmark: mawk is missing or failed; install the package mawk\n", stderr);
    std::exit(1);
  }
}

void compareWithCounting(std::size_t rows, const std::string& text) {
  std::vector<double> parse, count, perRow;
  for (int round = 0; round < 15; ++round) {
    parse.push_back(
        secondsPerCall(rows, [&text] { sink = zephlin::HidUtilOutputParser::parse(text).size(); }));
    count.push_back(secondsPerCall(rows, [&text] { sink = zephlin::bench::countLineFeeds(text); }));
    perRow.push_back(parse.back() / static_cast<double>(rows) * 1e9);
  }
  std::fprintf(stderr, "%zu rows, %zu bytes\n", rows, text.size());
  zephlin::bench::report("parse, a row", perRow, "ns");
  zephlin::bench::reportRatio("time, parse / counting pass", parse, count);
}

void compareWithMawk(std::size_t rows, const std::string& text) {
  char path[] = "/tmp/zephlin-listing-XXXXXX";
  const int file = ::mkstemp(path);
  ::close(file);
  std::ofstream(path) << text;
  std::vector<double> parse, mawk;
  for (int round = 0; round < 7; ++round) {
    mawk.push_back(secondsPerCall(rows, [&path] { runMawk(path); }));
    parse.push_back(
        secondsPerCall(rows, [&text] { sink = zephlin::HidUtilOutputParser::parse(text).size(); }));
  }
  ::unlink(path);
  zephlin::bench::reportRatio("time, mawk / parse", mawk, parse);
}

}  // namespace

int main() {
  for (const std::size_t rows : {std::size_t{10}, std::size_t{1000}, std::size_t{1000000}}) {
    const std::string text = listing(rows);
    compareWithCounting(rows, text);
    if (rows == 1000000) {
      compareWithMawk(rows, text);
    }
  }
}
