#import "Support/WindowTest.h"

#include "StandIns/CallLog.h"
#include "StandIns/Knobs.h"
#import "Support/StandInMac.h"

namespace zephlin::test {
namespace {

TEST_F(WindowTest, TheWindowIsTitledAndClosableAndFloatsAndIsKeptWhenClosed) {
  makeWindow();
  EXPECT_EQ([nativeWindow() styleMask], NSWindowStyleMaskTitled | NSWindowStyleMaskClosable);
  EXPECT_EQ([nativeWindow() level], NSFloatingWindowLevel);
  EXPECT_FALSE([nativeWindow() isReleasedWhenClosed]);
  EXPECT_FALSE([nativeWindow() isVisible]);
}

TEST_F(WindowTest, TheContentIsAsLargeAsDescribedUntilItIsFitted) {
  makeWindow();
  const NSRect frame = [nativeContent() frame];
  EXPECT_EQ(frame.size.width, 148);
  EXPECT_EQ(frame.size.height, 100);
  EXPECT_EQ(standins::calls({"NSWindow init"}), Calls{"NSWindow initWithContentRect:0 0 148 100"});
}

TEST_F(WindowTest, FittingLaysTheContentOutAndMakesTheWindowAsLargeAsIt) {
  makeWindow().setContentSizeToFit();
  EXPECT_EQ(standins::calls({"NSView layout"}), Calls{"NSView layoutSubtreeIfNeeded"});
  const NSSize size = [nativeContent() frame].size;
  EXPECT_EQ(size.width, 148);
  EXPECT_EQ(size.height, [nativeContent() fittingSize].height);
  EXPECT_GT(size.height, 22 + 9 + 11 + 9 + 4 + 16);
}

TEST_F(WindowTest, TheContentIsAPngOfItsSize) {
  makeWindow().setContentSizeToFit();
  const auto png = window_->contentAsPng();
  ASSERT_TRUE(png);
  EXPECT_EQ(png->substr(0, 8), "\x89PNG\r\n\x1a\n");
  NSData* const data = [NSData dataWithBytes:png->data() length:png->size()];
  NSBitmapImageRep* const image = [NSBitmapImageRep imageRepWithData:data];
  EXPECT_EQ([image pixelsWide], 148);
  EXPECT_EQ([image pixelsHigh], [nativeContent() frame].size.height);
  EXPECT_EQ(standins::calls({"NSBitmapImageRep"}),
            Calls{"NSBitmapImageRep representationUsingType:4 properties:0"});
}

TEST_F(WindowTest, ThereIsNoPngWhereTheViewCannotBeCachedOrTheImageNotEncoded) {
  makeWindow();
  standins::knobs().viewsCanBeCached = false;
  EXPECT_EQ(window_->contentAsPng(), std::nullopt);
  standins::knobs().viewsCanBeCached = true;
  standins::knobs().imagesCanBeEncoded = false;
  EXPECT_EQ(window_->contentAsPng(), std::nullopt);
  standins::knobs().imagesCanBeEncoded = true;
  [nativeWindow() setContentView:nil];
  EXPECT_EQ(window_->contentAsPng(), std::nullopt);
}

TEST_F(WindowTest, DestroyingTheWindowTellsNobodyAndLeavesNothing) {
  const auto delegate = std::make_shared<Delegate>();
  const int windows = liveObjectsOf("NSWindow");
  {
    const AutoreleasePool pool;
    makeWindow().setDelegate(delegate);
    window_->makeKeyAndOrderFront();
    window_.reset();
  }
  EXPECT_EQ(delegate->closings, 0);
  EXPECT_EQ(liveObjectsOf("NSWindow"), windows);
  EXPECT_EQ(liveObjectsOf("ZephlinWindowDelegate"), 0);
  EXPECT_EQ(liveObjectsOf("ZephlinActionTarget"), 0);
  EXPECT_EQ(liveObjectsOf("NSStackView"), 0);
  label_->setText("a label may outlive its window");
  stack_.reset();
  content_.reset();
  label_.reset();
  box_.reset();
  EXPECT_EQ(liveObjectsOf("ZephlinLayerView"), 0);
}

}  // namespace
}  // namespace zephlin::test
