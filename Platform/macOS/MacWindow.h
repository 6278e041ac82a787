#pragma once

#import <AppKit/AppKit.h>

#include <memory>
#include <optional>
#include <string>

#include "Platform/Window.h"
#import "Platform/macOS/NativeViews.h"
#import "Platform/macOS/Retained.h"

/// Passes on what AppKit tells the window's delegate.
@interface ZephlinWindowDelegate : NSObject <NSWindowDelegate> {
 @private
  std::weak_ptr<zephlin::WindowDelegate> _delegate;
}
- (instancetype)initWithDelegate:(std::weak_ptr<zephlin::WindowDelegate>)delegate;
@end

namespace zephlin {

class MacWindow final : public Window {
 public:
  MacWindow(const WindowDescription& description, std::shared_ptr<View> contentView);
  MacWindow(const MacWindow&) = delete;
  MacWindow& operator=(const MacWindow&) = delete;
  ~MacWindow() override;

  void setDelegate(std::weak_ptr<WindowDelegate> delegate) override;
  void setContentSizeToFit() override;
  void center() override;
  void makeKeyAndOrderFront() override;
  void displayIfNeeded() override { views_.displayIfNeeded(); }
  std::optional<std::string> contentAsPng() override;

 private:
  NativeViews views_;
  Retained<NSWindow*> window_;
  Retained<ZephlinWindowDelegate*> delegate_;
};

}  // namespace zephlin
