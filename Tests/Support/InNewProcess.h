#pragma once

#include <functional>
#include <string>

namespace zephlin::test {

/// Runs `work` in a forked child, so that it can spoil its descriptors, signals and limits as it
/// likes, and returns the text that it returns there. An exception is returned as its text.
/// Standard input is empty.
std::string inNewProcess(const std::function<std::string()>& work);

}  // namespace zephlin::test
