#pragma once

#include <functional>

#include "Platform/StatusBar.h"

namespace zephlin {

/// The desktop's tray: StatusNotifier items over D-Bus, or XEmbed windows if the panel takes only
/// those. The item's accessible name in the panel is QGuiApplication::applicationDisplayName().
/// Main thread, while the QApplication lives.
class QtStatusBar final : public StatusBar {
 public:
  /// `isTerminating` returns whether the application was asked to terminate.
  explicit QtStatusBar(std::function<bool()> isTerminating);

  /// Without a display (Qt's platform "offscreen") the item has no button.
  std::unique_ptr<StatusItem> makeStatusItem() override;
  std::optional<SymbolImage> systemSymbol(const std::string& name,
                                          const std::string& accessibilityDescription) override;

 private:
  std::function<bool()> isTerminating_;
};

}  // namespace zephlin
