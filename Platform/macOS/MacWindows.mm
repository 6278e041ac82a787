#import <AppKit/AppKit.h>

#include <utility>

#import "Platform/macOS/Bridge.h"
#import "Platform/macOS/NativeViews.h"
#import "Platform/macOS/Retained.h"

/// Forwards AppKit's call to the portable delegate.
@interface ZephlinWindowDelegate : NSObject <NSWindowDelegate> {
 @private
  std::weak_ptr<zephlin::WindowDelegate> _delegate;
}
- (instancetype)initWithDelegate:(std::weak_ptr<zephlin::WindowDelegate>)delegate;
@end

@implementation ZephlinWindowDelegate

- (instancetype)initWithDelegate:(std::weak_ptr<zephlin::WindowDelegate>)delegate {
  self = [super init];
  if (self != nil) {
    _delegate = std::move(delegate);
  }
  return self;
}

- (void)windowWillClose:(NSNotification*)notification {
  (void)notification;
  if (const auto delegate = _delegate.lock()) {
    delegate->windowWillClose();
  }
}

@end

namespace zephlin {

namespace {

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

MacWindow::MacWindow(const WindowDescription& description, std::shared_ptr<View> contentView)
    : views_(std::move(contentView)),
      window_([[NSWindow alloc]
          initWithContentRect:NSMakeRect(0, 0, description.contentWidth, description.contentHeight)
                    styleMask:NSWindowStyleMaskTitled | NSWindowStyleMaskClosable
                      backing:NSBackingStoreBuffered
                        defer:NO]) {
  [window_.get() setTitle:nativeText(description.title)];
  [window_.get() setContentView:views_.root()];
  // It is owned here; closing hides it.
  [window_.get() setReleasedWhenClosed:NO];
  [window_.get() setLevel:NSFloatingWindowLevel];
}

MacWindow::~MacWindow() {
  [window_.get() setDelegate:nil];
  [window_.get() close];
}

void MacWindow::setDelegate(std::weak_ptr<WindowDelegate> delegate) {
  Retained<ZephlinWindowDelegate*> native(
      [[ZephlinWindowDelegate alloc] initWithDelegate:std::move(delegate)]);
  [window_.get() setDelegate:native.get()];
  delegate_ = std::move(native);
}

void MacWindow::setContentSizeToFit() {
  NSView* const content = [window_.get() contentView];
  [content layoutSubtreeIfNeeded];
  [window_.get() setContentSize:[content fittingSize]];
}

void MacWindow::center() {
  [window_.get() center];
}

void MacWindow::makeKeyAndOrderFront() {
  [window_.get() makeKeyAndOrderFront:nil];
}

std::optional<std::string> MacWindow::contentAsPng() {
  NSView* const content = [window_.get() contentView];
  if (content == nil) {
    return std::nullopt;
  }
  NSBitmapImageRep* const image = [content bitmapImageRepForCachingDisplayInRect:[content bounds]];
  if (image == nil) {
    return std::nullopt;
  }
  [content cacheDisplayInRect:[content bounds] toBitmapImageRep:image];
  NSData* const png = [image representationUsingType:NSBitmapImageFileTypePNG
                                          properties:[NSDictionary dictionary]];
  if (png == nil) {
    return std::nullopt;
  }
  return std::string(static_cast<const char*>([png bytes]), [png length]);
}

}  // namespace

std::unique_ptr<Window> MacWindows::makeWindow(const WindowDescription& description,
                                               std::shared_ptr<View> contentView) {
  return std::make_unique<MacWindow>(description, std::move(contentView));
}

void MacAlerts::runModal(const Alert& alert) {
  const Retained<NSAlert*> native([[NSAlert alloc] init]);
  [native.get() setMessageText:nativeText(alert.messageText)];
  [native.get() setInformativeText:nativeText(alert.informativeText)];
  [native.get() setAlertStyle:NSAlertStyleInformational];
  for (const std::string& title : alert.buttons) {
    [native.get() addButtonWithTitle:nativeText(title)];
  }
  [native.get() runModal];
}

}  // namespace zephlin
