#import <QuartzCore/QuartzCore.h>

#include "StandIns/CallLog.h"
#import "Support/WindowTest.h"

namespace zephlin::test {
namespace {

class ViewsTest : public WindowTest {};

TEST_F(ViewsTest, TheContentIsPinnedAndItsWidthsAreFixedAllAtOnce) {
  makeWindow();
  EXPECT_EQ(standins::calls({"NSLayoutConstraint"}),
            (Calls{"NSLayoutConstraint activateConstraints(5)",
                   "NSLayoutConstraint activateConstraints(5)"}));
  NSStackView* const stack = find<NSStackView>(nativeContent());
  EXPECT_FALSE([stack translatesAutoresizingMaskIntoConstraints]);
  EXPECT_FALSE([find<NSTextField>(nativeContent()) translatesAutoresizingMaskIntoConstraints]);
  EXPECT_EQ([stack orientation], NSUserInterfaceLayoutOrientationVertical);
  EXPECT_EQ([stack alignment], NSLayoutAttributeCenterX);
  EXPECT_EQ([stack spacing], 12);
  EXPECT_EQ([stack edgeInsets].top, 22);
  EXPECT_EQ([stack edgeInsets].bottom, 16);
}

TEST_F(ViewsTest, AChildIsInsideItsBoxAtItsInsets) {
  makeWindow().setContentSizeToFit();
  NSTextField* const label = find<NSTextField>(nativeContent());
  const NSSize box = [[label superview] frame].size;
  const NSRect frame = [label frame];
  EXPECT_EQ(frame.origin.x, 14);
  EXPECT_EQ(frame.origin.y, 7);
  EXPECT_EQ(frame.size.width, box.width - 14 - 10);
  EXPECT_EQ(frame.size.height, box.height - 9 - 7);
  EXPECT_GT(frame.size.height, 10);
}

TEST_F(ViewsTest, ARowSharesItsWidthEquallyWhereItIsToldSo) {
  const auto row = std::make_shared<StackView>(
      StackView::Layout{.orientation = StackView::Orientation::Horizontal,
                        .distribution = StackView::Distribution::FillEqually});
  content_->addSubview(row, {});
  makeWindow();
  NSStackView* const native = [[nativeContent() subviews] lastObject];
  EXPECT_EQ([native distribution], NSStackViewDistributionFillEqually);
  EXPECT_EQ([native alignment], NSLayoutAttributeCenterY);
  EXPECT_EQ([find<NSStackView>(nativeContent()) distribution], NSStackViewDistributionGravityAreas);
}

TEST_F(ViewsTest, ALabelIsNotEditable) {
  makeWindow();
  EXPECT_FALSE([find<NSTextField>(nativeContent()) isEditable]);
}

TEST_F(ViewsTest, AWrappingLabelBreaksAtItsWidth) {
  const auto wrapping = std::make_shared<Label>(
      "text", Label::Style{.kind = Label::Kind::Wrapping, .preferredMaxLayoutWidth = 360});
  content_->addSubview(wrapping, {});
  makeWindow();
  NSTextField* const native = [[nativeContent() subviews] lastObject];
  EXPECT_EQ([native preferredMaxLayoutWidth], 360);
  EXPECT_TRUE([[native cell] wraps]);
}

TEST_F(ViewsTest, TheButtonIsRoundedAndRegularAndPerformsItsAction) {
  makeWindow();
  NSButton* const native = find<NSButton>(nativeContent());
  EXPECT_TRUE([[native title] isEqual:@"Reset"]);
  EXPECT_EQ([native bezelStyle], NSBezelStyleRounded);
  EXPECT_EQ([native controlSize], NSControlSizeRegular);
  [native performClick:nil];
  EXPECT_EQ(presses_, 1);
}

TEST_F(ViewsTest, ABoxUpdatesItsLayerWithTheColoursOfTheMoment) {
  makeWindow();
  NSView* const native = [find<NSTextField>(nativeContent()) superview];
  ASSERT_TRUE([native wantsLayer] && [native wantsUpdateLayer]);
  [native updateLayer];
  CALayer* const layer = [native layer];
  EXPECT_EQ([layer cornerRadius], 8);
  EXPECT_EQ([layer borderWidth], 0);
  EXPECT_EQ([layer borderColor], nullptr);
  EXPECT_TRUE(
      [reinterpret_cast<NSColor*>([layer backgroundColor]) isEqual:[NSColor systemRedColor]]);
  box_->fill = {ColorRole::SystemGreen};
  box_->border = Color{ColorRole::Separator};
  [native updateLayer];
  EXPECT_EQ([layer borderWidth], 1);
  EXPECT_TRUE([reinterpret_cast<NSColor*>([layer borderColor]) isEqual:[NSColor separatorColor]]);
  EXPECT_TRUE(
      [reinterpret_cast<NSColor*>([layer backgroundColor]) isEqual:[NSColor systemGreenColor]]);
}

TEST_F(ViewsTest, ABoxIsUpdatedWhenItIsMarkedAndNotBefore) {
  makeWindow().setContentSizeToFit();
  window_->makeKeyAndOrderFront();
  NSView* const native = [find<NSTextField>(nativeContent()) superview];
  [nativeWindow() displayIfNeeded];
  const int updates = box_->updates;
  EXPECT_GT(updates, 0);
  box_->fill = {ColorRole::SystemGreen};
  EXPECT_FALSE([native needsDisplay]);
  box_->needsDisplay = true;
  window_->displayIfNeeded();
  EXPECT_TRUE([native needsDisplay]);
  [nativeWindow() displayIfNeeded];
  EXPECT_EQ(box_->updates, updates + 1);
}

TEST_F(ViewsTest, ABoxWithoutLayerUpdatesNothing) {
  makeWindow();
  NSView* const native = [find<NSTextField>(nativeContent()) superview];
  [native setLayer:nil];
  const int updates = box_->updates;
  [native updateLayer];
  EXPECT_EQ(box_->updates, updates);
}

TEST_F(ViewsTest, ABoxFromAnArchiveStopsTheProgram) {
  EXPECT_DEATH([[NSClassFromString(@"ZephlinLayerView") alloc] initWithCoder:nil], "not used");
}

}  // namespace
}  // namespace zephlin::test
