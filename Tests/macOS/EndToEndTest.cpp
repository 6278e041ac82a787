#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/TestProcess.h"

namespace zephlin::test {
namespace {

std::string contents(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

TEST(EndToEndTest, ThePreviewOfTheWholeProgramWritesItsPictureAndExits) {
  const TemporaryDirectory folder;
  TestProcess program({ZEPHLIN_WITH_FAKE_HIDUTIL}, [&folder] {
    ::setenv("ZEPHLIN_PREVIEW", "taptest", 1);
    ::setenv("ZEPHLIN_PREVIEW_OUT", folder.file("preview.png").c_str(), 1);
  });
  EXPECT_EQ(program.wait().status, 0);
  EXPECT_EQ(contents(folder.file("preview.png")).substr(0, 8), "\x89PNG\r\n\x1a\n");
}

TEST(EndToEndTest, ThePreviewToAPlaceThatCannotBeWrittenExitsAllTheSame) {
  const TemporaryDirectory folder;
  TestProcess program({ZEPHLIN_WITH_FAKE_HIDUTIL}, [&folder] {
    ::setenv("ZEPHLIN_PREVIEW", "taptest", 1);
    ::setenv("ZEPHLIN_PREVIEW_OUT", folder.file("missing/preview.png").c_str(), 1);
  });
  EXPECT_EQ(program.wait().status, 0);
}

TEST(EndToEndTest, ACommandRunsWithoutTheApplication) {
  TestProcess program({ZEPHLIN_WITH_FAKE_HIDUTIL, "apply"}, [] { ::unsetenv("DISPLAY"); });
  const Outcome outcome = program.wait();
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(outcome.output,
            "Caps Lock delay override applied and verified (0 ms on 1 keyboard service).\n");
}

}  // namespace
}  // namespace zephlin::test
