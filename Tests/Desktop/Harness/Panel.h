#pragma once

#include <QRect>
#include <string>

#include "Tests/Desktop/Harness/Program.h"
#include "Tests/Desktop/Harness/Screen.h"
#include "Tests/Support/BusConnection.h"

namespace zephlin::test {

/// The name on the session bus of the program that takes tray items.
inline const QString trayWatcher = "org.kde.StatusNotifierWatcher";

/// Writes the settings of a dark panel along the upper edge that holds nothing but a tray, so that
/// nothing is asked at its first start.
void writePanelSettings(const std::string& configurationFolder);

enum class PanelStyle { Light, Dark };

/// A running xfce4-panel whose tray takes status notifier items and icons of the older kind.
class Panel {
 public:
  Panel(const BusConnection& sessionBus, const Screen& screen, const std::string& folder,
        const Environment& environment);

  /// Changes it while it runs.
  void setStyle(PanelStyle style);

  [[nodiscard]] QRect place() const { return place_; }
  /// The smallest rectangle around the panel's icons; empty without icons.
  [[nodiscard]] QRect placeOfIcons() const;
  /// Waits until there is an icon in the panel and returns its place.
  QRect waitForIcon() const;

 private:
  const Screen& screen_;
  Environment environment_;
  Program program_;
  QRect place_;
};

}  // namespace zephlin::test
