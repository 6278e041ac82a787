#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Tests/Unit/KeyboardWatcher/DelegatingPlatform.h"
#include "Tests/Unit/TapTest/TapTestFixture.h"

namespace zephlin {
namespace {

using TapTestWindow = TapTestFixture;
using Texts = std::vector<std::string>;

constexpr std::optional<double> noWidth;
constexpr double contentWidth = 360;

/// All labels of the window are centred.
struct LabelLook {
  std::string text;
  Label::Kind kind = Label::Kind::SingleLine;
  Font font;
  ColorRole role = ColorRole::Label;
};

void expectLabel(const Label& label, const LabelLook& look) {
  EXPECT_EQ(label.text(), look.text);
  EXPECT_EQ(label.style.kind, look.kind);
  EXPECT_EQ(label.style.font, look.font);
  EXPECT_EQ(label.textColor(), (Color{look.role, 1}));
  EXPECT_EQ(label.style.alignment, TextAlignment::Center);
  EXPECT_EQ(label.style.preferredMaxLayoutWidth,
            look.kind == Label::Kind::Wrapping ? std::optional(contentWidth) : noWidth);
  EXPECT_EQ(label.fixedWidth, noWidth);
}

TEST_F(TapTestWindow, IsNotBuiltBeforeTheFirstShow) {
  EXPECT_EQ(controller_->window(), nullptr);
  EXPECT_EQ(desktop_.windows().made(), 0U);
}

TEST_F(TapTestWindow, IsDescribedAsAFloatingWindowOfFixedWidth) {
  show();
  const WindowDescription& description = window().description;
  EXPECT_EQ(description.title, "Tap Test");
  EXPECT_EQ(description.contentWidth, 408);
  EXPECT_EQ(description.contentHeight, 100);
}

TEST_F(TapTestWindow, IsFittedAndCentredOnceAndShown) {
  show();
  EXPECT_EQ(window().fittings, 1U);
  EXPECT_EQ(window().centerings, 1U);
  EXPECT_EQ(window().orderFronts, 1U);
  EXPECT_TRUE(window().isShown);
  EXPECT_EQ(desktop_.application().activations(), 1U);
  EXPECT_NE(controller_->window(), nullptr);
}

TEST_F(TapTestWindow, HasTheControllerAsItsDelegate) {
  show();
  EXPECT_EQ(window().delegate.lock(), controller_);
}

TEST_F(TapTestWindow, IsReusedAfterClosingAndStartsAnew) {
  showAndTouchShift();
  desktop_.tapCapsLock();
  Window* const built = controller_->window();
  close();
  EXPECT_FALSE(window().isShown);
  show();
  EXPECT_EQ(controller_->window(), built);
  EXPECT_EQ(desktop_.windows().made(), 1U);
  EXPECT_TRUE(window().isShown);
  EXPECT_EQ(window().orderFronts, 2U);
  EXPECT_EQ(desktop_.application().activations(), 2U);
  EXPECT_EQ(window().fittings, 1U);
  EXPECT_EQ(window().centerings, 1U);
  EXPECT_EQ(stack().arrangedSubviews().size(), 8U);
  expectCounts(0, 0);
  expectWaiting();
  EXPECT_EQ(latency().text(), " ");
  expectChannels(1, 1, 0);
}

TEST_F(TapTestWindow, IsNotBuiltAgainWhileItIsOpen) {
  show();
  show();
  EXPECT_EQ(desktop_.windows().made(), 1U);
  EXPECT_EQ(window().orderFronts, 2U);
  EXPECT_EQ(window().fittings, 1U);
  EXPECT_EQ(window().centerings, 1U);
}

TEST_F(TapTestWindow, HasAContainerOfFixedWidthFilledByAStack) {
  show();
  const Box& container = this->container();
  EXPECT_EQ(container.fixedWidth, 408);
  EXPECT_FALSE(container.layer.has_value());
  ASSERT_EQ(container.subviews().size(), 1U);
  EXPECT_EQ(container.subviews()[0].insets, EdgeInsets{});
}

TEST_F(TapTestWindow, StacksEightViewsInAColumn) {
  show();
  EXPECT_EQ(stack().layout.orientation, StackView::Orientation::Vertical);
  EXPECT_EQ(stack().layout.distribution, StackView::Distribution::Natural);
  EXPECT_EQ(stack().layout.edgeInsets,
            (EdgeInsets{.top = 22, .left = 24, .bottom = 16, .right = 24}));
  EXPECT_EQ(stack().layout.spacing, 12);
  EXPECT_EQ(stack().fixedWidth, noWidth);
  EXPECT_EQ(stack().arrangedSubviews().size(), 8U);
}

TEST_F(TapTestWindow, SpacesTheViewsAsDesigned) {
  show();
  std::vector<double> spacings;
  for (const StackView::Arranged& arranged : stack().arrangedSubviews()) {
    spacings.push_back(arranged.spacingAfter);
  }
  spacings.pop_back();  // Nothing follows the last one.
  EXPECT_EQ(spacings, (std::vector<double>{4, 18, 16, 4, 18, 14, 12}));
}

TEST_F(TapTestWindow, BeginsWithTheTitle) {
  show();
  expectLabel(row<Label>(0), {.text = "Is your Caps Lock instant?",
                              .font = {.pointSize = 17, .weight = FontWeight::Bold}});
}

TEST_F(TapTestWindow, InvitesToTapInTheSubtitle) {
  show();
  expectLabel(row<Label>(1), {.text = "Tap Caps Lock a few times. Quick, light taps.",
                              .kind = Label::Kind::Wrapping,
                              .font = {.pointSize = 13},
                              .role = ColorRole::SecondaryLabel});
}

TEST_F(TapTestWindow, HasARowOfTwoEqualCards) {
  show();
  const StackView& cards = row<StackView>(2);
  EXPECT_EQ(cards.layout.orientation, StackView::Orientation::Horizontal);
  EXPECT_EQ(cards.layout.distribution, StackView::Distribution::FillEqually);
  EXPECT_EQ(cards.layout.spacing, 12);
  EXPECT_EQ(cards.fixedWidth, contentWidth);
  EXPECT_EQ(cards.layout.edgeInsets, EdgeInsets{});
  ASSERT_EQ(cards.arrangedSubviews().size(), 2U);
  EXPECT_EQ(cards.arrangedSubviews()[0].spacingAfter, 12);
}

TEST_F(TapTestWindow, DrawsEachCardAsABorderedBox) {
  show();
  desktop_.runUntilIdleNow();
  const Layer expected{12, {ColorRole::ControlBackground, 1}, 1, Color{ColorRole::Separator, 1}};
  for (const std::size_t index : {0U, 1U}) {
    EXPECT_EQ(card(index).layer, expected);
    EXPECT_EQ(card(index).fixedWidth, noWidth);
    ASSERT_EQ(card(index).subviews().size(), 1U);
    EXPECT_EQ(card(index).subviews()[0].insets,
              (EdgeInsets{.top = 16, .left = 8, .bottom = 14, .right = 8}));
  }
}

TEST_F(TapTestWindow, StacksCountAndCaptionInEachCard) {
  show();
  for (const std::size_t index : {0U, 1U}) {
    const StackView& lines = cardStack(index);
    EXPECT_EQ(lines.layout.orientation, StackView::Orientation::Vertical);
    EXPECT_EQ(lines.layout.distribution, StackView::Distribution::Natural);
    EXPECT_EQ(lines.layout.spacing, 2);
    EXPECT_EQ(lines.layout.edgeInsets, EdgeInsets{});
    EXPECT_EQ(lines.fixedWidth, noWidth);
    ASSERT_EQ(lines.arrangedSubviews().size(), 2U);
    EXPECT_EQ(lines.arrangedSubviews()[0].spacingAfter, 2);
  }
}

TEST_F(TapTestWindow, ShowsPressesAsTapsAndTogglesAsRegistered) {
  show();
  const Font countFont{.pointSize = 40, .weight = FontWeight::Bold, .monospacedDigits = true};
  const Font captionFont{.pointSize = 11, .weight = FontWeight::Semibold};
  desktop_.tapCapsLock(false);
  expectLabel(cardLabel(0, 0), {.text = "1", .font = countFont});
  expectLabel(cardLabel(0, 1),
              {.text = "Taps", .font = captionFont, .role = ColorRole::SecondaryLabel});
  expectLabel(cardLabel(1, 0), {.text = "0", .font = countFont});
  expectLabel(cardLabel(1, 1),
              {.text = "Registered", .font = captionFont, .role = ColorRole::SecondaryLabel});
}

TEST_F(TapTestWindow, HoldsTheVerdictInAPillWithoutBorder) {
  show();
  desktop_.runUntilIdleNow();
  const Layer expected{8, {ColorRole::Separator, 1}, 0, std::nullopt};
  EXPECT_EQ(pill().layer, expected);
  EXPECT_EQ(pill().fixedWidth, contentWidth);
  ASSERT_EQ(pill().subviews().size(), 1U);
  EXPECT_EQ(pill().subviews()[0].insets,
            (EdgeInsets{.top = 9, .left = 14, .bottom = 9, .right = 14}));
  expectLabel(verdict(), {.text = "Waiting for taps…",
                          .font = {.pointSize = 13, .weight = FontWeight::Semibold},
                          .role = ColorRole::SecondaryLabel});
}

TEST_F(TapTestWindow, ShowsTheLatencyInSmallDigitsOfOneWidth) {
  show();
  expectLabel(latency(), {.text = " ",
                          .font = {.pointSize = 11, .monospacedDigits = true},
                          .role = ColorRole::TertiaryLabel});
}

TEST_F(TapTestWindow, HintsAtTheDifference) {
  show();
  expectLabel(row<Label>(5),
              {.text = "Want to see the difference? Turn off Instant Caps Lock in the menu and tap "
                       "quickly again and watch taps go missing.",
               .kind = Label::Kind::Wrapping,
               .font = {.pointSize = 11},
               .role = ColorRole::TertiaryLabel});
}

TEST_F(TapTestWindow, HasAButtonThatResets) {
  show();
  const Button& button = row<Button>(6);
  EXPECT_EQ(button.title, "Reset");
  EXPECT_EQ(button.fixedWidth, noWidth);
  desktop_.tapCapsLock(false);
  expectCounts(1, 0);
  button.action();
  expectCounts(0, 0);
}

TEST_F(TapTestWindow, EndsWithTheNoteInTheSmallestPrint) {
  show();
  expectLabel(note(),
              {.text = "Zephlin only watches the Caps Lock key here, nothing else you type.",
               .kind = Label::Kind::Wrapping,
               .font = {.pointSize = 10},
               .role = ColorRole::TertiaryLabel});
}

/// Notes in which order the window is made and the parts of the desktop are used, and the texts
/// that labels show on the way.
class OrderOfShowing final : public DelegatingPlatform, private WindowServer {
 public:
  WindowServer& windows() override { return *this; }
  Application& application() override {
    steps.emplace_back("activate");
    return DelegatingPlatform::application();
  }
  HidDevices& hidDevices() override {
    steps.emplace_back("press channel");
    textsWhenMonitoringStarts = texts();
    return DelegatingPlatform::hidDevices();
  }
  EventTaps& eventTaps() override {
    steps.emplace_back("event tap");
    return DelegatingPlatform::eventTaps();
  }
  Dispatch& dispatch() override {
    steps.emplace_back("polling");
    return DelegatingPlatform::dispatch();
  }
  void forbidEventTaps() { desktop_.eventTaps().setAllowed(false); }

  Texts steps;
  Texts textsWhenFitted;
  Texts textsWhenMonitoringStarts;

 private:
  class NotingWindow final : public Window {
   public:
    explicit NotingWindow(OrderOfShowing& order) : order_(order) {}
    void setDelegate(std::weak_ptr<WindowDelegate> /*delegate*/) override { note("delegate"); }
    void setContentSizeToFit() override {
      note("fit");
      order_.textsWhenFitted = order_.texts();
    }
    void center() override { note("center"); }
    void makeKeyAndOrderFront() override { note("front"); }
    void displayIfNeeded() override {}
    std::optional<std::string> contentAsPng() override { return std::nullopt; }

   private:
    void note(const char* step) { order_.steps.emplace_back(step); }
    OrderOfShowing& order_;
  };

  std::unique_ptr<Window> makeWindow(const WindowDescription& /*description*/,
                                     std::shared_ptr<View> contentView) override {
    steps.emplace_back("make");
    content_ = std::move(contentView);
    return std::make_unique<NotingWindow>(*this);
  }
  Texts texts() {
    Texts found;
    forEachView(*content_, [&found](View& view) {
      if (const auto* label = dynamic_cast<const Label*>(&view)) {
        found.push_back(label->text());
      }
    });
    return found;
  }

  std::shared_ptr<View> content_;
};

constexpr const char* title = "Is your Caps Lock instant?";
constexpr const char* subtitle = "Tap Caps Lock a few times. Quick, light taps.";
constexpr const char* hint =
    "Want to see the difference? Turn off Instant Caps Lock in the menu and tap quickly again and "
    "watch taps go missing.";

TEST(ShowingTheTapTest, BuildsTheWindowThenMonitorsThenBringsItToTheFront) {
  OrderOfShowing platform;
  const auto controller = std::make_shared<TapTestController>(platform);
  controller->show();
  EXPECT_EQ(platform.steps, (Texts{"make", "fit", "center", "delegate", "press channel",
                                   "event tap", "activate", "front"}));
  platform.steps.clear();
  controller->show();
  EXPECT_EQ(platform.steps, (Texts{"press channel", "event tap", "activate", "front"}));
}

TEST(ShowingTheTapTest, PollsOnlyAfterTheEventTapWasRefused) {
  OrderOfShowing platform;
  platform.forbidEventTaps();
  const auto controller = std::make_shared<TapTestController>(platform);
  controller->show();
  EXPECT_EQ(platform.steps, (Texts{"make", "fit", "center", "delegate", "press channel",
                                   "event tap", "polling", "activate", "front"}));
}

TEST(ShowingTheTapTest, FitsTheWindowWhileVerdictLatencyAndNoteAreEmpty) {
  OrderOfShowing platform;
  const auto controller = std::make_shared<TapTestController>(platform);
  controller->show();
  EXPECT_EQ(platform.textsWhenFitted,
            (Texts{title, subtitle, "0", "Taps", "0", "Registered", "", "", hint, ""}));
}

TEST(ShowingTheTapTest, RefreshesTheLabelsBeforeMonitoringStartsAndTheNoteAfterwards) {
  OrderOfShowing platform;
  const auto controller = std::make_shared<TapTestController>(platform);
  controller->show();
  EXPECT_EQ(
      platform.textsWhenMonitoringStarts,
      (Texts{title, subtitle, "0", "Taps", "0", "Registered", "Waiting for taps…", " ", hint, ""}));
}

}  // namespace
}  // namespace zephlin
