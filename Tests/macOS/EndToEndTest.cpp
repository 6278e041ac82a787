#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "Tests/Support/Files.h"
#include "Tests/Support/TemporaryDirectory.h"

extern char** environ;  // macOS declares it nowhere.

namespace zephlin::test {
namespace {

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

/// Runs the whole program, its standard output going to a file, with variables added to the
/// environment. Returns its exit status, or -1.
int runZephlin(std::vector<std::string> command, std::vector<std::string> variables,
               const std::string& output) {
  command.insert(command.begin(), ZEPHLIN_WITH_FAKE_HIDUTIL);
  for (char** variable = environ; *variable != nullptr; ++variable) {
    variables.emplace_back(*variable);  // The first of two values counts.
  }
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0600);
  pid_t process = -1;
  const int error = ::posix_spawn(&process, command[0].c_str(), &actions, nullptr,
                                  pointersTo(command).data(), pointersTo(variables).data());
  ::posix_spawn_file_actions_destroy(&actions);
  int status = 0;
  if (error != 0 || ::waitpid(process, &status, 0) == -1 || !WIFEXITED(status)) {
    return -1;
  }
  return WEXITSTATUS(status);
}

TEST(EndToEndTest, ThePreviewOfTheWholeProgramWritesItsPictureAndExits) {
  const TemporaryDirectory folder;
  EXPECT_EQ(
      runZephlin({},
                 {"ZEPHLIN_PREVIEW=taptest", "ZEPHLIN_PREVIEW_OUT=" + folder.file("preview.png")},
                 folder.file("output")),
      0);
  EXPECT_EQ(contentOf(folder.file("preview.png")).substr(0, 8), "\x89PNG\r\n\x1a\n");
}

TEST(EndToEndTest, ThePreviewToAPlaceThatCannotBeWrittenExitsAllTheSame) {
  const TemporaryDirectory folder;
  EXPECT_EQ(runZephlin({},
                       {"ZEPHLIN_PREVIEW=taptest",
                        "ZEPHLIN_PREVIEW_OUT=" + folder.file("missing/preview.png")},
                       folder.file("output")),
            0);
}

TEST(EndToEndTest, ACommandRunsWithoutTheApplication) {
  const TemporaryDirectory folder;
  // An application would find no display.
  EXPECT_EQ(runZephlin({"apply"}, {"DISPLAY="}, folder.file("output")), 0);
  EXPECT_EQ(contentOf(folder.file("output")),
            "Caps Lock delay override applied and verified (0 ms on 1 keyboard service).\n");
}

}  // namespace
}  // namespace zephlin::test
