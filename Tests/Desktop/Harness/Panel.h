#pragma once

#include <QRect>
#include <vector>

#include "Tests/Desktop/Harness/Screen.h"
#include "Tests/Desktop/Harness/Waiting.h"
#include "Tests/Support/BusConnection.h"

namespace zephlin::test {

/// The name on the session bus of the program that takes tray items.
inline const QString trayWatcher = "org.kde.StatusNotifierWatcher";

inline bool hostIsReady(const BusConnection& bus) {
  try {
    return bus.hasName(trayWatcher) && bus.property({trayWatcher, "/StatusNotifierWatcher",
                                                     trayWatcher, "IsStatusNotifierHostRegistered"})
                                           .toBool();
  } catch (const std::runtime_error&) {
    // One that ends while it is asked does not answer.
    return false;
  }
}

enum class PanelStyle { Light, Dark };

/// A running panel with a tray, which ends with this object.
class Panel {
 public:
  explicit Panel(const Screen& screen) : screen_(screen) {}
  Panel(const Panel&) = delete;
  Panel& operator=(const Panel&) = delete;
  virtual ~Panel() = default;

  /// The part of the screen that has nothing in it but tray icons.
  [[nodiscard]] virtual QRect place() const = 0;

  [[nodiscard]] virtual std::vector<PanelStyle> styles() const {
    return {PanelStyle::Light, PanelStyle::Dark};
  }

  /// Changes it while it runs, to one of its styles. It is dark at first.
  virtual void setStyle(PanelStyle style) = 0;

  /// The smallest rectangle around the panel's icons; empty without icons.
  [[nodiscard]] virtual QRect placeOfIcons() const {
    const QImage picture = screen_.picture(place());
    // The last line may be the panel's edge.
    const QRgb background = picture.pixel(picture.width() / 2, picture.height() / 2);
    QRect icons;
    for (int y = 1; y < picture.height() - 2; ++y) {
      for (int x = 1; x < picture.width() - 1; ++x) {
        if (picture.pixel(x, y) != background) {
          icons |= QRect(x, y, 1, 1);
        }
      }
    }
    return icons.translated(icons.isNull() ? QPoint() : place().topLeft());
  }

  /// Waits until there is an icon in the panel and returns its place.
  QRect waitForIcon() const {
    waitUntil("an icon in the panel", [this] { return !placeOfIcons().isNull(); });
    return placeOfIcons();
  }

 private:
  const Screen& screen_;
};

}  // namespace zephlin::test
