#pragma once

#include <QRect>
#include <filesystem>
#include <fstream>
#include <string>

#include "Tests/Desktop/Harness/Program.h"
#include "Tests/Desktop/Harness/Screen.h"
#include "Tests/Desktop/Harness/Waiting.h"
#include "Tests/Support/BusConnection.h"

namespace zephlin::test {

constexpr const char* panelSettings = R"(<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="dark-mode" type="bool" value="true"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=0;y=0"/>
      <property name="length" type="uint" value="100"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="size" type="uint" value="32"/>
      <property name="plugin-ids" type="array">
        <value type="int" value="1"/>
      </property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="systray">
      <property name="square-icons" type="bool" value="true"/>
    </property>
  </property>
</channel>
)";

/// The name on the session bus of the program that takes tray items.
inline const QString trayWatcher = "org.kde.StatusNotifierWatcher";

inline bool hostIsReady(const BusConnection& bus) {
  return bus.hasName(trayWatcher) && bus.property({trayWatcher, "/StatusNotifierWatcher",
                                                   trayWatcher, "IsStatusNotifierHostRegistered"})
                                         .toBool();
}

/// Writes the settings of a dark panel along the upper edge that holds nothing but a tray, so that
/// nothing is asked at its first start.
inline void writePanelSettings(const std::string& configurationFolder) {
  const std::filesystem::path folder = configurationFolder + "/xfce4/xfconf/xfce-perchannel-xml";
  std::filesystem::create_directories(folder);
  std::ofstream(folder / "xfce4-panel.xml") << panelSettings;
}

enum class PanelStyle { Light, Dark };

/// A running xfce4-panel whose tray takes status notifier items and icons of the older kind.
class Panel {
 public:
  Panel(const BusConnection& sessionBus, const Screen& screen, const std::string& folder,
        const Environment& environment)
      : screen_(screen),
        environment_(environment),
        program_({"/usr/bin/xfce4-panel", "--disable-wm-check"}, environment,
                 folder + "/panel.log") {
    waitUntil("a tray", [&] { return hostIsReady(sessionBus); });
    place_ = screen_.placeOf(screen_.waitForWindow("xfce4-panel"));
  }

  /// Changes it while it runs.
  void setStyle(PanelStyle style) {
    runIn(environment_,
          {"/usr/bin/xfconf-query", "--channel", "xfce4-panel", "--property", "/panels/dark-mode",
           "--set", style == PanelStyle::Dark ? "true" : "false"});
  }

  [[nodiscard]] QRect place() const { return place_; }
  /// The smallest rectangle around the panel's icons; empty without icons.
  [[nodiscard]] QRect placeOfIcons() const {
    const QImage picture = screen_.picture(place_);
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
    return icons.translated(icons.isNull() ? QPoint() : place_.topLeft());
  }

  /// Waits until there is an icon in the panel and returns its place.
  QRect waitForIcon() const {
    waitUntil("an icon in the panel", [this] { return !placeOfIcons().isNull(); });
    return placeOfIcons();
  }

 private:
  const Screen& screen_;
  Environment environment_;
  Program program_;
  QRect place_;
};

}  // namespace zephlin::test
