#include "KeyboardService/Protocol/Container.h"

#include <fstream>

#include "KeyboardService/Protocol/Errors.h"

namespace zephlin {

std::optional<std::string> container(const std::filesystem::path& root) {
  // systemd names any container in which it runs; podman and docker mark theirs.
  std::ifstream file(root / "run/systemd/container");
  std::string name;
  if (std::getline(file, name) && !name.empty()) {
    return printable(name, 64);
  }
  std::error_code error;
  if (std::filesystem::exists(root / "run/.containerenv", error)) {
    return "podman";
  }
  if (std::filesystem::exists(root / ".dockerenv", error)) {
    return "docker";
  }
  return std::nullopt;
}

std::optional<std::string> containerAdvice(const std::filesystem::path& root) {
  const auto kind = container(root);
  return kind ? std::optional("this is a container (" + *kind +
                              "); run Zephlin on the machine itself, which has the keyboards")
              : std::nullopt;
}

}  // namespace zephlin
