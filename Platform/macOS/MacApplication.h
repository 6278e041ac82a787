#pragma once

#import <AppKit/AppKit.h>

#include <memory>

#include "Platform/Application.h"
#import "Platform/macOS/MacMenu.h"
#import "Platform/macOS/Retained.h"

/// Passes on what AppKit tells the application's delegate.
@interface ZephlinApplicationDelegate : NSObject <NSApplicationDelegate> {
 @private
  std::weak_ptr<zephlin::ApplicationDelegate> _delegate;
}
- (instancetype)initWithDelegate:(std::weak_ptr<zephlin::ApplicationDelegate>)delegate;
@end

namespace zephlin {

/// The shared application, which is made by this.
class MacApplication final : public Application {
 public:
  MacApplication();
  MacApplication(const MacApplication&) = delete;
  MacApplication& operator=(const MacApplication&) = delete;
  ~MacApplication() override;

  void setDelegate(std::weak_ptr<ApplicationDelegate> delegate) override;
  void becomeAccessory() override;
  void setMainMenu(std::shared_ptr<Menu> menu) override;
  /// Always false: Launch Services starts an application once, and brings it forward after that.
  bool handOverToRunningInstance() override { return false; }
  void activateIgnoringOtherApps() override;
  void run() override;
  /// Does not return (NSApplication's terminate: exits).
  void terminate() override;

 private:
  NSApplication* const application_;
  Retained<ZephlinApplicationDelegate*> delegate_;
  std::unique_ptr<MacMenu> mainMenu_;
};

}  // namespace zephlin
