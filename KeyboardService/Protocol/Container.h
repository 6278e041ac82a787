#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace zephlin {

/// The kind of container that this process runs in, such as "docker", if it is one that leaves a
/// mark. `root` is the root directory.
std::optional<std::string> container(const std::filesystem::path& root = "/");

/// In a container, why there are no keyboards and what to do, to follow a message.
std::optional<std::string> containerAdvice(const std::filesystem::path& root = "/");

}  // namespace zephlin
