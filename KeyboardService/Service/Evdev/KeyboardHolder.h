#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace zephlin {

/// How the state of a keyboard begins that another program has grabbed.
constexpr std::string_view heldByAnother = "held by another program";

/// The program that has grabbed an event device, to follow `heldByAnother`: ": keyd (pid
/// 412)", ", probably keyd (pid 412)" if that is a guess, or nothing. It looks through all
/// processes, which takes milliseconds. `processes` is /proc.
std::string holderOf(const std::string& node, const std::filesystem::path& processes = "/proc");

}  // namespace zephlin
