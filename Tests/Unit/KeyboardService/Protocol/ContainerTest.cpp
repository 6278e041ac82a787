#include <gtest/gtest.h>

#include <fstream>

#include "KeyboardService/Protocol/Container.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace zephlin {
namespace {

/// A root directory with one mark, if any.
std::optional<std::string> containerWith(const std::string& file, const std::string& text = "") {
  const test::TemporaryDirectory root;
  std::filesystem::create_directories(root.path() / "run/systemd");
  if (!file.empty()) {
    std::ofstream(root.path() / file) << text;
  }
  return container(root.path());
}

TEST(Container, IsKnownByItsMark) {
  EXPECT_EQ(containerWith(""), std::nullopt);
  EXPECT_EQ(containerWith(".dockerenv"), "docker");
  EXPECT_EQ(containerWith("run/.containerenv", "engine=\"podman-5\"\n"), "podman");
  EXPECT_EQ(containerWith("run/systemd/container", "systemd-nspawn\n"), "systemd-nspawn");
  EXPECT_EQ(containerWith("run/systemd/container", "a\x1b[1m"), "a\\x1b[1m");
  EXPECT_EQ(containerWith("run/systemd/container", ""), std::nullopt);
}

TEST(Container, HasAdviceOnlyIfThereIsOne) {
  const test::TemporaryDirectory root;
  EXPECT_EQ(containerAdvice(root.path()), std::nullopt);
  std::ofstream(root.path() / ".dockerenv") << "";
  EXPECT_EQ(containerAdvice(root.path()),
            "this is a container (docker); run Zephlin on the machine itself, which has the "
            "keyboards");
}

}  // namespace
}  // namespace zephlin
