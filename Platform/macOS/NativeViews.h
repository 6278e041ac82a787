#pragma once

#import <AppKit/AppKit.h>

#include <memory>
#include <vector>

#include "Platform/Views.h"
#include "Platform/Window.h"
#import "Platform/macOS/Bridge.h"
#import "Platform/macOS/Retained.h"

namespace zephlin {

/// A tree of native views that shows a portable one, label by label and box by box. Main thread.
class NativeViews final : private ViewVisitor {
 public:
  explicit NativeViews(std::shared_ptr<View> root);

  [[nodiscard]] NSView* root() const { return root_.get(); }
  /// As Window::displayIfNeeded.
  void displayIfNeeded();

 private:
  template <typename Portable, typename Native>
  struct Shown {
    Portable& portable;
    Retained<Native*> native;
  };

  Retained<NSView*> make(View& view);
  void visit(Box& box) override;
  void visit(Label& label) override;
  void visit(Button& button) override;
  void visit(StackView& stack) override;

  const std::shared_ptr<View> portableRoot_;
  std::vector<Shown<Label, NSTextField>> labels_;
  std::vector<Shown<Box, NSView>> layers_;

  /// The buttons do not own their targets.
  std::vector<Retained<ZephlinActionTarget*>> targets_;
  /// What the last visit made, and where its children are in it.
  Retained<NSView*> made_;
  Retained<NSArray*> pins_;
  Retained<NSView*> root_;
};

class MacWindows final : public WindowServer {
 public:
  std::unique_ptr<Window> makeWindow(const WindowDescription& description,
                                     std::shared_ptr<View> contentView) override;
};

class MacAlerts final : public AlertPresenter {
 public:
  void runModal(const Alert& alert) override;
};

}  // namespace zephlin
