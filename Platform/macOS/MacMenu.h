#pragma once

#import <AppKit/AppKit.h>

#include <memory>
#include <optional>
#include <string>

#include "Platform/Menu.h"
#include "Platform/StatusBar.h"
#import "Platform/macOS/Retained.h"

/// Has the portable menu's delegate fill it, and the native menu after it, before it opens.
@interface ZephlinMenuDelegate : NSObject <NSMenuDelegate> {
 @private
  std::weak_ptr<zephlin::Menu> _menu;
}
- (instancetype)initWithMenu:(std::weak_ptr<zephlin::Menu>)menu;
@end

namespace zephlin {

/// A portable menu as AppKit shows it. Main thread.
class MacMenu {
 public:
  explicit MacMenu(std::shared_ptr<Menu> menu);
  MacMenu(const MacMenu&) = delete;
  MacMenu& operator=(const MacMenu&) = delete;
  ~MacMenu();

  [[nodiscard]] NSMenu* get() const { return nativeMenu_.get(); }
  /// Gives the items the titles that they have now.
  void showTitles();

 private:
  std::shared_ptr<Menu> menu_;
  Retained<NSMenu*> nativeMenu_;
  Retained<ZephlinMenuDelegate*> delegate_;
};

/// The system's status bar, with SF Symbols.
class MacStatusBar final : public StatusBar {
 public:
  std::unique_ptr<StatusItem> makeStatusItem() override;
  std::optional<SymbolImage> systemSymbol(const std::string& name,
                                          const std::string& accessibilityDescription) override;
};

}  // namespace zephlin
