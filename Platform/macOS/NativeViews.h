#pragma once

#import <AppKit/AppKit.h>

#include <memory>
#include <vector>

#include "Platform/Views.h"
#import "Platform/macOS/ActionTarget.h"
#import "Platform/macOS/Retained.h"

namespace zephlin {

/// A tree of native views that shows a portable one, label by label and box by box, and follows its
/// changes. Main thread.
class NativeViews {
 public:
  explicit NativeViews(const std::shared_ptr<View>& root);

  [[nodiscard]] NSView* root() const { return root_.get(); }

 private:
  Retained<NSView*> make(const std::shared_ptr<View>& view);
  Retained<NSView*> makeBox(const std::shared_ptr<View>& view);
  Retained<NSView*> makeLabel(Label& label);
  Retained<NSView*> makeButton(const Button& button);
  Retained<NSView*> makeStack(const StackView& stack);
  /// Adds the subviews inside the view, at their insets, and fixes its width.
  void constrain(const View& view, NSView* native);

  /// The buttons do not own their targets.
  std::vector<Retained<ZephlinActionTarget*>> targets_;
  Retained<NSView*> root_;
};

}  // namespace zephlin
