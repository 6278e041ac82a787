#pragma once

#import <AppKit/AppKit.h>

#include <memory>
#include <optional>

#import "Support/MacTest.h"

namespace zephlin::test {
/// A box whose colour is read when its layer is updated.
class Box : public View {
 public:
  Box() { layer = Layer(); }
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
    box_->fixedWidth = 100;
    stack_->spacing = 12;
    stack_->edgeInsets = {.top = 22, .left = 24, .bottom = 16, .right = 24};
    stack_->addArrangedSubview(box_);
    stack_->setCustomSpacing(4, *box_);
    stack_->addArrangedSubview(std::make_shared<Button>("Reset", [this] { ++presses_; }));
    content_->addSubview(stack_, {});
    content_->fixedWidth = 148;
    label_->font = {.pointSize = 11, .weight = FontWeight::Bold, .monospacedDigits = true};
    label_->alignment = TextAlignment::Center;
  }

  Window& makeWindow() {
    window_ = platform().windows().makeWindow(
        {.title = "Tap Test", .contentWidth = 148, .contentHeight = 100}, content_);
    return *window_;
  }

  static NSWindow* nativeWindow() { return windowTitled("Tap Test"); }
  static NSView* nativeContent() { return [nativeWindow() contentView]; }

  std::shared_ptr<Label> label_ = std::make_shared<Label>("0");
  std::shared_ptr<Box> box_ = std::make_shared<Box>();
  std::shared_ptr<StackView> stack_ = std::make_shared<StackView>(StackView::Orientation::Vertical);
  std::shared_ptr<View> content_ = std::make_shared<View>();
  int presses_ = 0;
  std::unique_ptr<Window> window_;
};

}  // namespace zephlin::test
