#pragma once

#include <filesystem>
#include <string>

namespace zephlin {

/// The program that has grabbed an event device, to follow "held by another program": ": keyd (pid
/// 412)", ", probably keyd (pid 412)" if that is a guess, or nothing. It looks through all
/// processes, which takes milliseconds. `processes` is /proc.
std::string holderOf(const std::string& node, const std::filesystem::path& processes = "/proc");

}  // namespace zephlin
