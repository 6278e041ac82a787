// Lets the application live through random days, and reports the first seed that goes wrong.

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>

#include "Tests/Simulation/HistoryRunner.h"

namespace zephlin {
namespace {

constexpr const char* usage =
    "usage: Simulation [--seeds N] [--days D] [--first-seed S]   random histories\n"
    "       Simulation --seed S [--days D]                       one of them\n"
    "       Simulation --print S [--days D]                      its text\n"
    "       Simulation --replay FILE                             a history from its text\n"
    "       Simulation --bench [--days D]                        how fast it is\n";

struct Options {
  std::uint64_t seeds = 50;
  std::uint64_t firstSeed = 1;
  double days = 1;
  std::optional<std::uint64_t> print;
  std::optional<std::string> replay;
  bool isBench = false;
};

Options optionsFrom(int count, char* arguments[]) {
  Options options;
  for (int i = 1; i < count; ++i) {
    const std::string name = arguments[i];
    if (name == "--bench") {
      options.isBench = true;
      continue;
    }
    if (++i == count) {
      throw std::invalid_argument(usage);
    }
    const std::string value = arguments[i];
    if (name == "--seeds") {
      options.seeds = std::stoull(value);
    } else if (name == "--first-seed") {
      options.firstSeed = std::stoull(value);
    } else if (name == "--seed") {
      options.firstSeed = std::stoull(value);
      options.seeds = 1;
    } else if (name == "--days") {
      options.days = std::stod(value);
    } else if (name == "--print") {
      options.print = std::stoull(value);
    } else if (name == "--replay") {
      options.replay = value;
    } else {
      throw std::invalid_argument(usage);
    }
  }
  return options;
}

History readHistory(const std::string& path) {
  std::ifstream file(path);
  if (!file) {
    throw std::invalid_argument("cannot read " + path + "\n");
  }
  return parseHistory(std::string(std::istreambuf_iterator<char>(file), {}));
}

/// Shrinks what goes wrong, and prints it.
void report(const History& history, const Violation& violation) {
  std::printf("after %.6f s: %s\n", violation.seconds, violation.what.c_str());
  const History shrunk =
      shrinkHistory(history, [](const History& part) { return runHistory(part).has_value(); });
  const std::optional<Violation> last = runHistory(shrunk);
  std::printf("%zu of its %zu events are enough:\n%s", shrunk.size(), history.size(),
              textOf(shrunk).c_str());
  if (last) {
    std::printf("# after %.6f s: %s\n", last->seconds, last->what.c_str());
  }
}

int runSeeds(const Options& options) {
  std::size_t events = 0;
  for (std::uint64_t i = 0; i < options.seeds; ++i) {
    const std::uint64_t seed = options.firstSeed + i;
    const History history = generateHistory(seed, options.days);
    events += history.size();
    if (const auto violation = runHistory(history)) {
      std::printf("seed %llu (--seed %llu --days %g) goes wrong ",
                  static_cast<unsigned long long>(seed), static_cast<unsigned long long>(seed),
                  options.days);
      report(history, *violation);
      return EXIT_FAILURE;
    }
  }
  std::printf("%llu seeds of %g days, %zu events: nothing wrong\n",
              static_cast<unsigned long long>(options.seeds), options.days, events);
  return EXIT_SUCCESS;
}

int replay(const std::string& path) {
  const History history = readHistory(path);
  const auto violation = runHistory(history);
  if (violation) {
    std::printf("%s goes wrong ", path.c_str());
    report(history, *violation);
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}

int bench(const Options& options) {
  const History history = generateHistory(options.firstSeed, options.days);
  const auto begin = std::chrono::steady_clock::now();
  const auto violation = runHistory(history);
  const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
  std::printf("%g days with %zu events in %.3f s: %.1f days per second\n", options.days,
              history.size(), taken.count(), options.days / taken.count());
  return violation ? EXIT_FAILURE : EXIT_SUCCESS;
}

int run(const Options& options) {
  if (options.print) {
    std::fputs(textOf(generateHistory(*options.print, options.days)).c_str(), stdout);
    return EXIT_SUCCESS;
  }
  if (options.replay) {
    return replay(*options.replay);
  }
  return options.isBench ? bench(options) : runSeeds(options);
}

}  // namespace
}  // namespace zephlin

int main(int argc, char* argv[]) {
  try {
    return zephlin::run(zephlin::optionsFrom(argc, argv));
  } catch (const std::exception& error) {
    std::fputs(error.what(), stderr);
    return 64;
  }
}
