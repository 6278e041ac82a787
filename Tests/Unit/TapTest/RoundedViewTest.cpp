#include <gtest/gtest.h>

#include <memory>
#include <optional>

#include "Platform/Simulated/SimulatedDesktop.h"
#include "Zephlin/RoundedView.h"

namespace zephlin {
namespace {

constexpr Color green{ColorRole::SystemGreen, 0.14};
constexpr Color red{ColorRole::SystemRed, 0.5};
constexpr Color separator{ColorRole::Separator};

Layer updatedLayer(RoundedView& box) {
  box.updateLayer();
  return box.layer.value();
}

TEST(RoundedView, KeepsWhatItWasMadeOf) {
  const RoundedView box(green, separator, 12);
  EXPECT_EQ(box.fill, green);
  EXPECT_EQ(box.border, separator);
  EXPECT_EQ(box.cornerRadius, 12);
}

TEST(RoundedView, IsLayerBacked) {
  EXPECT_TRUE(RoundedView(green, std::nullopt, 8).layer.has_value());
}

TEST(RoundedView, WithoutBorderItsLayerHasNone) {
  RoundedView box(green, std::nullopt, 8);
  EXPECT_EQ(updatedLayer(box), (Layer{8, green, 0, std::nullopt}));
}

TEST(RoundedView, WithABorderColourItsLayerHasABorderOfOnePoint) {
  RoundedView box(green, separator, 12);
  EXPECT_EQ(updatedLayer(box), (Layer{12, green, 1, separator}));
}

TEST(RoundedView, EachUpdateReadsEverythingAfresh) {
  RoundedView box(green, separator, 12);
  box.updateLayer();
  box.fill = red;
  box.border.reset();
  box.cornerRadius = 3;
  EXPECT_EQ(updatedLayer(box), (Layer{3, red, 0, std::nullopt}));
  box.border = green;
  EXPECT_EQ(updatedLayer(box), (Layer{3, red, 1, green}));
}

TEST(RoundedView, WithoutALayerAnUpdateDoesNothing) {
  RoundedView box(green, separator, 12);
  box.layer.reset();
  box.updateLayer();
  EXPECT_FALSE(box.layer.has_value());
}

TEST(RoundedView, EmbedsItsChildWithTheInsetsOfEachSide) {
  RoundedView box(green, std::nullopt, 8);
  const auto child = std::make_shared<Box>();
  const EdgeInsets insets{.top = 1, .left = 2, .bottom = 3, .right = 4};
  box.embed(child, insets);
  ASSERT_EQ(box.subviews().size(), 1U);
  EXPECT_EQ(box.subviews()[0].view, child);
  EXPECT_EQ(box.subviews()[0].insets, insets);
}

TEST(RoundedView, TakesItsSizeFromItsChild) {
  RoundedView box(green, std::nullopt, 8);
  box.embed(std::make_shared<Box>(), {1, 2, 3, 4});
  EXPECT_EQ(box.fixedWidth, std::nullopt);
  EXPECT_EQ(box.subviews()[0].view->fixedWidth, std::nullopt);
}

/// A box and a label in a window that has been shown and displayed.
class RoundedViewInAWindow : public testing::Test {
 protected:
  RoundedViewInAWindow() {
    const auto content = std::make_shared<Box>();
    content->addSubview(box_, {});
    content->addSubview(neighbour_, {});
    window_ = desktop_.windows().makeWindow({}, content);
    window_->makeKeyAndOrderFront();
    desktop_.runUntilIdleNow();
  }
  Color shownColor() {
    desktop_.runUntilIdleNow();
    return box_->layer.value().backgroundColor;
  }

  SimulatedDesktop desktop_;
  std::shared_ptr<RoundedView> box_ = std::make_shared<RoundedView>(green, std::nullopt, 8);
  std::shared_ptr<Label> neighbour_ = std::make_shared<Label>("");
  std::unique_ptr<Window> window_;
};

TEST_F(RoundedViewInAWindow, ShowsItsFill) {
  EXPECT_EQ(shownColor(), green);
}

TEST_F(RoundedViewInAWindow, ANewFillAloneIsNotShown) {
  box_->fill = red;
  EXPECT_EQ(shownColor(), green);
  neighbour_->setText("changed");
  window_->displayIfNeeded();
  EXPECT_EQ(shownColor(), green);
}

TEST_F(RoundedViewInAWindow, ANewFillIsShownOnceTheBoxNeedsDisplay) {
  box_->fill = red;
  box_->needsDisplay = true;
  EXPECT_EQ(shownColor(), green) << "the window has not been asked";
  window_->displayIfNeeded();
  EXPECT_EQ(shownColor(), red);
}

}  // namespace
}  // namespace zephlin
