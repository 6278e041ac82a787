#pragma once

#import <AppKit/AppKit.h>

#include <memory>
#include <optional>
#include <string>

#include "Platform/Application.h"
#import "Platform/macOS/MacMenu.h"
#import "Platform/macOS/Retained.h"

/// Forwards AppKit's call to the portable delegate.
@interface ZephlinApplicationDelegate : NSObject <NSApplicationDelegate> {
 @private
  std::weak_ptr<zephlin::ApplicationDelegate> _delegate;
}
- (instancetype)initWithDelegate:(std::weak_ptr<zephlin::ApplicationDelegate>)delegate;
@end

namespace zephlin {

/// Creates the shared application.
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

class MacProcessInfo final : public ProcessInfo {
 public:
  [[nodiscard]] std::optional<std::string> environmentVariable(
      const std::string& name) const override;
  [[nodiscard]] std::string mainBundlePath() const override;
};

}  // namespace zephlin
