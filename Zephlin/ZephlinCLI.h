#pragma once

#include <cstdint>
#include <set>
#include <string>

namespace zephlin {

/// The command-line tool. Its reports go to standard output; an error is one write to standard
/// error.
namespace ZephlinCLI {

/// The words that `run` knows, to the letter.
const std::set<std::string>& knownCommands();

/// Performs one command, prints, and returns the exit status: 0, 1 for a failure or, after
/// "apply", for no keyboard that confirmed it, 2 for an unknown command. Blocks for up to the
/// engine's time limit for each run of hidutil. Called on the main thread; throws nothing that the
/// engine reports.
std::int32_t run(const std::string& command);

}  // namespace ZephlinCLI

}  // namespace zephlin
