#pragma once

#include <memory>
#include <optional>
#include <string>

#include "Platform/Menu.h"

namespace zephlin {

/// A symbol of the system's or of the application's own set.
struct SymbolImage {
  std::string name;
  std::string accessibilityDescription;
  /// Drawn in the colour of the panel.
  bool isTemplate = false;

  bool operator==(const SymbolImage&) const = default;
};

/// An entry of the desktop's menu bar or panel. Destroying it removes it. Main thread.
class StatusItem {
 public:
  virtual ~StatusItem() = default;
  /// False if the platform gave the item nothing to show; the setters below then do nothing.
  [[nodiscard]] virtual bool hasButton() const = 0;
  /// Without an image, the button shows none.
  virtual void setButtonImage(const std::optional<SymbolImage>& image) = 0;
  virtual void setButtonToolTip(const std::string& text) = 0;
  /// The menu's delegate is asked for its items each time before it opens.
  virtual void setMenu(std::shared_ptr<Menu> menu) = 0;
  /// Shows the titles that the menu's items have now, also while the menu is open.
  virtual void menuTitlesDidChange() = 0;
};

/// Main thread.
class StatusBar {
 public:
  virtual ~StatusBar() = default;
  /// An item as wide as the bar is high.
  virtual std::unique_ptr<StatusItem> makeStatusItem() = 0;
  /// Absent if the platform has no such symbol.
  virtual std::optional<SymbolImage> systemSymbol(const std::string& name,
                                                  const std::string& accessibilityDescription) = 0;
};

}  // namespace zephlin
