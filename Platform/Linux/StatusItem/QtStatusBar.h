#pragma once

#include <chrono>
#include <functional>

#include "Platform/StatusBar.h"

namespace zephlin {

/// The desktop's tray: StatusNotifier items over D-Bus, or XEmbed windows if the panel takes only
/// those. The item's accessible name in the panel is QGuiApplication::applicationDisplayName().
/// Main thread, while the QApplication lives.
class QtStatusBar final : public StatusBar {
 public:
  /// How long an item may be in no tray before that is reported.
  static constexpr std::chrono::seconds patience{6};

  /// `isTerminating` returns whether the application was asked to terminate. `presenceChanged` is
  /// called from the event loop: with false when an item has been in no tray for `patience`, and
  /// with true when it appears in one after that. Never without a display.
  QtStatusBar(std::function<bool()> isTerminating,
              std::function<void(bool isInTray)> presenceChanged);

  /// Without a display (Qt's platform "offscreen") the item has no button.
  std::unique_ptr<StatusItem> makeStatusItem() override;
  std::optional<SymbolImage> systemSymbol(const std::string& name,
                                          const std::string& accessibilityDescription) override;

 private:
  std::function<bool()> isTerminating_;
  std::function<void(bool)> presenceChanged_;
};

}  // namespace zephlin
