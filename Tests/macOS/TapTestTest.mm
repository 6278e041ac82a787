#import "Support/ApplicationTest.h"
#import "Support/Mac.h"
#include "Tests/Support/EnvironmentVariable.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Zephlin/StartApplication.h"

namespace zephlin::test {
namespace {

class TapTestTest : public ApplicationTest {};

TEST_F(TapTestTest, ThePreviewWritesAPictureOfTheWindowAndQuits) {
  const TemporaryDirectory folder;
  const EnvironmentVariable preview("ZEPHLIN_PREVIEW", "taptest");
  const EnvironmentVariable out("ZEPHLIN_PREVIEW_OUT", folder.file("preview.png"));
  mac::resumeTime();
  EXPECT_EQ(runApplication(platform()), 0);
  const std::string path = folder.file("preview.png");
  NSBitmapImageRep* const picture = [NSBitmapImageRep
      imageRepWithData:[NSData
                           dataWithContentsOfFile:[NSString stringWithUTF8String:path.c_str()]]];
  EXPECT_GT([picture pixelsWide], 0);
  EXPECT_EQ([picture pixelsWide] % 408, 0) << "one pixel a point, or a whole number of them";
  EXPECT_GT([picture pixelsHigh], 300);
}

}  // namespace
}  // namespace zephlin::test
