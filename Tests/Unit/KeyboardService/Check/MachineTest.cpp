#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>

#include "KeyboardService/Check/Machine.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace zephlin {
namespace {

void write(const std::filesystem::path& file, const std::string& text) {
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file) << text;
}

TEST(Machine, NamesItsDistribution) {
  const test::TemporaryDirectory root;
  EXPECT_EQ(distribution(root.path()), "unknown distribution");
  write(root.path() / "usr/lib/os-release", "NAME=Fedora\nPRETTY_NAME='Fedora Linux 43'\n");
  EXPECT_EQ(distribution(root.path()), "Fedora Linux 43");
  write(root.path() / "etc/os-release", "PRETTY_NAME=\"Arch\x1b Linux\"\nNAME=Arch\n");
  EXPECT_EQ(distribution(root.path()), "Arch\\x1b Linux");
  write(root.path() / "etc/os-release", "PRETTY_NAME=Plain\n");
  EXPECT_EQ(distribution(root.path()), "Plain");
}

TEST(Machine, KnowsWhoHasLoggedInIfTheKernelDoes) {
  const test::TemporaryDirectory processes;
  EXPECT_EQ(loginUser(processes.path()), ::getuid());
  write(processes.path() / "self/loginuid", "1234");
  EXPECT_EQ(loginUser(processes.path()), 1234U);
  write(processes.path() / "self/loginuid", "4294967295");
  EXPECT_EQ(loginUser(processes.path()), ::getuid());
}

TEST(Machine, SaysHowAUserIsLoggedIn) {
  EXPECT_EQ(session({}, false), "unknown to systemd-logind");
  EXPECT_EQ(session({}, true), "over SSH");
  EXPECT_EQ(session({{}, true}, false), "over SSH");
  EXPECT_EQ(session({{"seat0"}, false}, false), "local (seat0)");
  EXPECT_EQ(session({{"seat0", "seat1"}, false}, false), "local (seat0, seat1)");
  EXPECT_EQ(session({{"seat0"}, false}, true), "local (seat0), and over SSH");
}

}  // namespace
}  // namespace zephlin
