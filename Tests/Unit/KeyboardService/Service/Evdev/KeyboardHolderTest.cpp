#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "KeyboardService/Service/Evdev/KeyboardHolder.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace zephlin {
namespace {

constexpr const char* keyboard = "/dev/input/event3";

/// A /proc of its own.
class KeyboardHolder : public testing::Test {
 protected:
  void run(int process, const std::string& name, const std::vector<std::string>& files) {
    const auto folder = processes_.path() / std::to_string(process);
    std::filesystem::create_directories(folder / "fd");
    std::ofstream(folder / "comm") << name << '\n';
    int descriptor = 0;
    for (const std::string& file : files) {
      std::filesystem::create_symlink(file, folder / "fd" / std::to_string(descriptor++));
    }
  }

  std::string holder() { return holderOf(keyboard, processes_.path()); }

  test::TemporaryDirectory processes_;
};

TEST_F(KeyboardHolder, IsTheProgramThatHasTheKeyboardOpen) {
  run(1, "init", {"/dev/null"});
  run(412, "grabber", {"/dev/null", keyboard});
  EXPECT_EQ(holder(), ": grabber (pid 412)");
}

TEST_F(KeyboardHolder, IsRatherTheOneThatMakesKeyboardsToo) {
  run(300, "reader", {keyboard});
  run(412, "keyd", {"/dev/uinput", keyboard});
  run(500, "other", {"/dev/uinput", "/dev/input/event4"});
  EXPECT_EQ(holder(), ": keyd (pid 412)");
}

TEST_F(KeyboardHolder, IsNoDisplayServer) {
  run(300, "systemd-logind", {keyboard});
  run(301, "sway", {keyboard});
  EXPECT_EQ(holder(), "");
  run(412, "grabber", {keyboard});
  EXPECT_EQ(holder(), ": grabber (pid 412)");
}

TEST_F(KeyboardHolder, IsGuessedByNameWhereFilesAreNotShown) {
  run(300, "bash", {});
  run(412, "kmonad", {});
  EXPECT_EQ(holder(), ", probably kmonad (pid 412)");
  run(413, "keyd", {});
  EXPECT_EQ(holder(), "");
}

TEST_F(KeyboardHolder, MayBeAnyOfSeveral) {
  run(411, "one", {keyboard});
  run(412, "another", {keyboard});
  EXPECT_EQ(holder(), "");
}

TEST_F(KeyboardHolder, IsNeverThisProcess) {
  run(static_cast<int>(::getpid()), "zephlin-hidd", {"/dev/uinput", keyboard});
  EXPECT_EQ(holder(), "");
}

TEST_F(KeyboardHolder, HasAPrintableName) {
  run(412, "a\x1b[1m", {keyboard});
  EXPECT_EQ(holder(), ": a\\x1b[1m (pid 412)");
}

}  // namespace
}  // namespace zephlin
