#pragma once

#import <AppKit/AppKit.h>

#include <memory>
#include <optional>

#import "Support/MacTest.h"

namespace zephlin::test {
/// A box whose colour is read when its layer is updated.
class CountingBox : public Box {
 public:
  CountingBox() : Box(100) { layer = Layer(); }
  void updateLayer() override {
    ++updates;
    *layer = {.cornerRadius = 8,
              .backgroundColor = fill,
              .borderWidth = border ? 1.0 : 0.0,
              .borderColor = border};
  }

  Color fill{ColorRole::SystemRed};
  std::optional<Color> border;
  int updates = 0;
};

class Delegate : public WindowDelegate {
 public:
  void windowWillClose() override { ++closings; }
  int closings = 0;
};

template <typename Kind>
Kind* find(NSView* root) {
  Kind* found = nil;
  forEachNativeView(root, [&found](NSView* view) {
    if (found == nil && [view isKindOfClass:[Kind class]]) {
      found = static_cast<Kind*>(view);
    }
  });
  return found;
}

class WindowTest : public MacTest {
 protected:
  WindowTest() {
    box_->addSubview(label_, {.top = 9, .left = 14, .bottom = 7, .right = 10});
    stack_->addArrangedSubview(box_, 4);
    stack_->addArrangedSubview(std::make_shared<Button>("Reset", [this] { ++presses_; }));
    content_->addSubview(stack_, {});
  }

  Window& makeWindow() {
    window_ = platform().windows().makeWindow(
        {.title = "Tap Test", .contentWidth = 148, .contentHeight = 100}, content_);
    return *window_;
  }

  static NSWindow* nativeWindow() { return windowTitled("Tap Test"); }
  static NSView* nativeContent() { return [nativeWindow() contentView]; }

  std::shared_ptr<Label> label_ = std::make_shared<Label>(
      "0",
      Label::Style{.font = {.pointSize = 11, .weight = FontWeight::Bold, .monospacedDigits = true},
                   .alignment = TextAlignment::Center});
  std::shared_ptr<CountingBox> box_ = std::make_shared<CountingBox>();
  std::shared_ptr<StackView> stack_ = std::make_shared<StackView>(StackView::Layout{
      .spacing = 12, .edgeInsets = {.top = 22, .left = 24, .bottom = 16, .right = 24}});
  std::shared_ptr<Box> content_ = std::make_shared<Box>(148);
  int presses_ = 0;
  std::unique_ptr<Window> window_;
};

}  // namespace zephlin::test
