#include "Tests/Contract/ContractTest.h"

namespace zephlin::contract {
namespace {

class CountingDelegate final : public WindowDelegate {
 public:
  void windowWillClose() override {
    ++closings;
    if (onClosing) {
      onClosing();
    }
  }

  int closings = 0;
  std::function<void()> onClosing;
};

/// A layer-backed box that counts how often it was shown anew.
class CountingView final : public Box {
 public:
  CountingView() { layer = Layer{}; }
  void updateLayer() override { ++updates; }

  int updates = 0;
};

class WindowTest : public ContractTest {
 protected:
  WindowTest() {
    layered_->addSubview(label_, {.top = 5, .left = 5, .bottom = 5, .right = 5});
    content_->addArrangedSubview(layered_);
    content_->addArrangedSubview(std::make_shared<Button>("Press", [this] { ++presses_; }));
    window_ = platform().windows().makeWindow(
        {.title = windowTitle, .contentWidth = 200, .contentHeight = 100}, content_);
    window_->setDelegate(delegate_);
  }

  void show() {
    window_->setContentSizeToFit();
    window_->center();
    window_->makeKeyAndOrderFront();
    EXPECT_TRUE(runUntil([&] { return desktop().isWindowShown(); }));
  }

  std::shared_ptr<Label> label_ = std::make_shared<Label>("Text & more");
  std::shared_ptr<CountingView> layered_ = std::make_shared<CountingView>();
  std::shared_ptr<StackView> content_ = std::make_shared<StackView>(StackView::Layout());
  std::shared_ptr<CountingDelegate> delegate_ = std::make_shared<CountingDelegate>();
  std::unique_ptr<Window> window_;
  int presses_ = 0;
};

TEST_F(WindowTest, IsNotShownBeforeItIsOrderedFront) {
  settle();
  EXPECT_FALSE(desktop().isWindowShown());
  show();
  EXPECT_EQ(desktop().windowTexts(), Words{"Text & more"});
}

TEST_F(WindowTest, ClosingHidesItAndTellsTheDelegateOnce) {
  show();
  desktop().closeWindow();
  EXPECT_TRUE(runUntil([&] { return !desktop().isWindowShown(); }));
  settle();
  EXPECT_EQ(delegate_->closings, 1);
}

TEST_F(WindowTest, IsStillShownWhenTheDelegateIsTold) {
  show();
  bool wasShown = false;
  delegate_->onClosing = [&] { wasShown = desktop().isWindowShown(); };
  desktop().closeWindow();
  EXPECT_TRUE(runUntil([&] { return !desktop().isWindowShown(); }));
  EXPECT_TRUE(wasShown);
}

TEST_F(WindowTest, CanBeShownAgain) {
  show();
  desktop().closeWindow();
  EXPECT_TRUE(runUntil([&] { return !desktop().isWindowShown(); }));
  label_->setText("Changed meanwhile");
  window_->displayIfNeeded();
  show();
  EXPECT_EQ(desktop().windowTexts(), Words{"Changed meanwhile"});
  EXPECT_EQ(delegate_->closings, 1);
}

TEST_F(WindowTest, GoesWithItsOwnerWithoutAWordToTheDelegate) {
  show();
  window_.reset();
  EXPECT_TRUE(runUntil([&] { return !desktop().isWindowShown(); }));
  EXPECT_EQ(delegate_->closings, 0);
  label_->setText("The views live on");
  layered_->needsDisplay = true;
  settle();
}

TEST_F(WindowTest, AButtonActsWhenItIsPressed) {
  show();
  EXPECT_TRUE(desktop().pressButton("Press"));
  EXPECT_TRUE(runUntil([&] { return presses_ == 1; }));
}

TEST_F(WindowTest, ALabelFollowsItsText) {
  show();
  label_->setText("Other");
  window_->displayIfNeeded();
  EXPECT_TRUE(runUntil([&] { return desktop().windowTexts() == Words{"Other"}; }));
}

TEST_F(WindowTest, AViewThatNeedsDisplayIsShownAnewSoon) {
  show();
  EXPECT_TRUE(runUntil([&] { return layered_->updates > 0; }));
  const int updates = layered_->updates;
  layered_->needsDisplay = true;
  window_->displayIfNeeded();
  EXPECT_TRUE(runUntil([&] { return layered_->updates > updates; }));
}

TEST_F(WindowTest, ItsContentIsHadAsAPngFile) {
  show();
  const auto png = window_->contentAsPng();
  ASSERT_TRUE(png);
  EXPECT_EQ(png->substr(0, 8), "\x89PNG\r\n\x1a\n");
}

}  // namespace
}  // namespace zephlin::contract
