#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Platform/Simulated/SimulatedDesktop.h"
#include "Tests/Support/DelegatingPlatform.h"
#include "Tests/Unit/TapTest/TapTestFixture.h"

namespace zephlin {
namespace {

using TapTestWindow = TapTestFixture;
using Texts = std::vector<std::string>;

TEST_F(TapTestWindow, IsNotBuiltBeforeTheFirstShow) {
  EXPECT_EQ(controller_->window(), nullptr);
  EXPECT_EQ(desktop_.windows().made(), 0U);
}

TEST_F(TapTestWindow, ShowsTheHelpOfThePlatformBelowTheNoteOnlyWhileNoPressCanBeCounted) {
  int openings = 0;
  desktop_.hidDevices().setHelp(CapsLockKeyHelp{"Do this.", [&] { ++openings; }});
  show();
  EXPECT_EQ(stack().arrangedSubviews().size(), 8U);
  close();
  desktop_.hidDevices().failOpening(notPermitted);
  show();
  EXPECT_EQ(desktop_.windows().made(), 2U);
  ASSERT_EQ(stack().arrangedSubviews().size(), 10U);
  EXPECT_EQ(note().textColor().role, ColorRole::SystemOrange);
  EXPECT_EQ(row<Label>(8).text(), "Do this.");
  ASSERT_TRUE(window().pressButton("Help"));
  EXPECT_EQ(openings, 1);
  close();
  show();
  EXPECT_EQ(desktop_.windows().made(), 2U);
  close();
  desktop_.hidDevices().failOpening(std::nullopt);
  show();
  EXPECT_EQ(stack().arrangedSubviews().size(), 8U);
  showAndTouchShift();
  desktop_.tapCapsLock();
  expectCounts(1, 1);
  expectInstant();
}

TEST_F(TapTestWindow, HasNoHelpIfThePlatformHasNone) {
  desktop_.hidDevices().failOpening(notPermitted);
  show();
  EXPECT_EQ(stack().arrangedSubviews().size(), 8U);
}

// What the window shows is in Tests/Contract/Golden.
TEST_F(TapTestWindow, Is408By100PointsLargeBeforeItIsFitted) {
  show();
  EXPECT_EQ(window().description.contentWidth, 408);
  EXPECT_EQ(window().description.contentHeight, 100);
}

TEST_F(TapTestWindow, WrapsItsLongTextsAt360Points) {
  show();
  for (const std::size_t index : {1U, 5U, 7U}) {
    EXPECT_EQ(row<Label>(index).style.preferredMaxLayoutWidth, 360) << index;
  }
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

TEST_F(TapTestWindow, HasAButtonThatResets) {
  show();
  desktop_.tapCapsLock(false);
  expectCounts(1, 0);
  ASSERT_TRUE(window().pressButton("Reset"));
  expectCounts(0, 0);
}

/// Notes in which order the window is made and the parts of the desktop are used, and the texts
/// that labels show on the way.
class OrderOfShowing final : public test::DelegatingPlatform<SimulatedDesktop>,
                             private WindowServer {
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
