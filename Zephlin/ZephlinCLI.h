#pragma once

#include <cstdint>
#include <set>
#include <string>

namespace zephlin {

/// The command-line tool. Its reports go to standard output; an error is one write to standard
/// error.
namespace ZephlinCLI {

/// The words that `run` knows; case matters.
const std::set<std::string>& knownCommands();

/// Performs one command, prints its report, and returns the exit status: 0; 1 if the command
/// failed, if no keyboard confirmed an "apply", or if the report could not be written; 2 for an
/// unknown command. Blocks for up to the engine's time limit for each run of hidutil. Main thread.
/// Reports what the engine throws, and throws nothing else.
std::int32_t run(const std::string& command);

}  // namespace ZephlinCLI

}  // namespace zephlin
