#import <AppKit/AppKit.h>

#include <utility>

#import "Platform/macOS/Bridge.h"
#import "Platform/macOS/MacMenu.h"
#import "Platform/macOS/Retained.h"

namespace zephlin {

namespace {

/// Nil if the system has no such symbol.
NSImage* loadSymbol(const std::string& name, const std::string& accessibilityDescription) {
  return [NSImage imageWithSystemSymbolName:nativeText(name)
                   accessibilityDescription:nativeText(accessibilityDescription)];
}

class MacStatusItem final : public StatusItem {
 public:
  explicit MacStatusItem(Retained<NSStatusItem*> item) : item_(std::move(item)) {}
  MacStatusItem(const MacStatusItem&) = delete;
  MacStatusItem& operator=(const MacStatusItem&) = delete;
  ~MacStatusItem() override { [[NSStatusBar systemStatusBar] removeStatusItem:item_.get()]; }

  [[nodiscard]] bool hasButton() const override { return [item_.get() button] != nil; }

  void setButtonImage(const std::optional<SymbolImage>& image) override {
    NSImage* const native = image ? loadSymbol(image->name, image->accessibilityDescription) : nil;
    [native setTemplate:image && image->isTemplate ? YES : NO];
    [[item_.get() button] setImage:native];
  }

  void setButtonToolTip(const std::string& text) override {
    [[item_.get() button] setToolTip:nativeText(text)];
  }

  void setMenu(std::shared_ptr<Menu> menu) override {
    auto native = std::make_unique<MacMenu>(std::move(menu));
    [item_.get() setMenu:native->get()];
    menu_ = std::move(native);
  }

  void menuTitlesDidChange() override {
    if (menu_) {
      menu_->showTitles();
    }
  }

 private:
  Retained<NSStatusItem*> item_;
  std::unique_ptr<MacMenu> menu_;
};

}  // namespace

std::unique_ptr<StatusItem> MacStatusBar::makeStatusItem() {
  return std::make_unique<MacStatusItem>(Retained<NSStatusItem*>::retaining(
      [[NSStatusBar systemStatusBar] statusItemWithLength:NSSquareStatusItemLength]));
}

std::optional<SymbolImage> MacStatusBar::systemSymbol(const std::string& name,
                                                      const std::string& accessibilityDescription) {
  if (loadSymbol(name, accessibilityDescription) == nil) {
    return std::nullopt;
  }
  return SymbolImage{name, accessibilityDescription, false};
}

}  // namespace zephlin
