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
  /// How long an item may take to find a tray, before `trayIsMissing`.
  static constexpr std::chrono::seconds patience{6};

  /// `isTerminating` returns whether the application was asked to terminate. `trayIsMissing` is
  /// called from the event loop, once for each item that is in no tray when `patience` has passed
  /// since it was made; never without a display. A tray that comes later still shows the item.
  QtStatusBar(std::function<bool()> isTerminating, std::function<void()> trayIsMissing);

  /// Without a display (Qt's platform "offscreen") the item has no button.
  std::unique_ptr<StatusItem> makeStatusItem() override;
  std::optional<SymbolImage> systemSymbol(const std::string& name,
                                          const std::string& accessibilityDescription) override;

 private:
  std::function<bool()> isTerminating_;
  std::function<void()> trayIsMissing_;
};

}  // namespace zephlin
