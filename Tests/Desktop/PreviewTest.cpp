// The picture of the tap test that is made unattended.

#include <filesystem>

#include "Tests/Desktop/Harness/DesktopTest.h"

namespace zephlin::test {
namespace {

class Preview : public DesktopTest {
 protected:
  void SetUp() override { std::filesystem::create_directories(SCREENSHOT_FOLDER); }
};

/// 408 points wide, and as high as the content.
void expectPicture(const std::string& file) {
  const QImage picture(QString::fromStdString(file));
  EXPECT_EQ(picture.width(), 408) << file;
  EXPECT_GT(picture.height(), 300) << file;
}

Environment previewTo(const std::string& file) {
  return {{"ZEPHLIN_PREVIEW", "taptest"}, {"ZEPHLIN_PREVIEW_OUT", file}};
}

TEST_F(Preview, IsWrittenASecondAfterTheStartAndEndsTheApplication) {
  const std::string file = SCREENSHOT_FOLDER "/preview.png";
  std::filesystem::remove(file);
  const double startedAt = monotonicSeconds();
  App app(desktop(), {.environment = previewTo(file)});
  EXPECT_EQ(app.program().waitForEnd(), 0);
  EXPECT_GE(monotonicSeconds() - startedAt, 1.0);
  expectPicture(file);
}

TEST_F(Preview, NeedsNoDisplay) {
  const std::string file = SCREENSHOT_FOLDER "/preview-without-display.png";
  std::filesystem::remove(file);
  Environment environment = previewTo(file);
  environment["DISPLAY"] = "";
  App app(desktop(), {.environment = environment});
  EXPECT_EQ(app.program().waitForEnd(), 0);
  expectPicture(file);
}

TEST_F(Preview, EndsTheApplicationWhereTheFileCannotBeWritten) {
  App app(desktop(), {.environment = previewTo("/nowhere/preview.png")});
  EXPECT_EQ(app.program().waitForEnd(), 0);
  EXPECT_EQ(app.program().log(), "");
}

TEST_F(Preview, WithoutAFileIsTheWindowAndTheApplicationGoesOn) {
  App app(desktop(), {.environment = {{"ZEPHLIN_PREVIEW", "taptest"}}});
  desktop().screen().waitForWindow("Tap Test");
  desktop().photograph("tap-test-waiting");
  app.waitForStatusLine("On. Every tap registers instantly");
}

TEST_F(Preview, IsOffForAnyOtherWord) {
  const std::string file = desktop().makeHome() + "/preview.png";
  Environment environment = previewTo(file);
  environment["ZEPHLIN_PREVIEW"] = "TapTest";
  const double startedAt = monotonicSeconds();
  App app(desktop(), {.environment = environment});
  app.waitForStatusLine("On. Every tap registers instantly");
  // Later than the picture would be made.
  waitUntil("two seconds to pass", [&] { return monotonicSeconds() > startedAt + 2; });
  EXPECT_FALSE(app.program().hasEnded());
  EXPECT_FALSE(std::filesystem::exists(file));
  EXPECT_FALSE(desktop().screen().windowTitled("Tap Test").has_value());
}

}  // namespace
}  // namespace zephlin::test
