#include "Tests/Desktop/Harness/Panel.h"

#include <filesystem>
#include <fstream>

#include "Tests/Desktop/Harness/Waiting.h"

namespace zephlin::test {
namespace {

constexpr const char* settings = R"(<?xml version="1.0" encoding="UTF-8"?>
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

bool hostIsReady(const BusConnection& bus) {
  return bus.hasName(trayWatcher) && bus.property({trayWatcher, "/StatusNotifierWatcher",
                                                   trayWatcher, "IsStatusNotifierHostRegistered"})
                                         .toBool();
}

}  // namespace

void writePanelSettings(const std::string& configurationFolder) {
  const std::filesystem::path folder = configurationFolder + "/xfce4/xfconf/xfce-perchannel-xml";
  std::filesystem::create_directories(folder);
  std::ofstream(folder / "xfce4-panel.xml") << settings;
}

Panel::Panel(const BusConnection& sessionBus, const Screen& screen, const std::string& folder,
             const Environment& environment)
    : screen_(screen),
      environment_(environment),
      program_({"/usr/bin/xfce4-panel", "--disable-wm-check"}, environment, folder + "/panel.log") {
  waitUntil("a tray", [&] { return hostIsReady(sessionBus); });
  place_ = screen_.placeOf(screen_.waitForWindow("xfce4-panel"));
}

void Panel::setStyle(PanelStyle style) {
  runIn(environment_, {"/usr/bin/xfconf-query", "--channel", "xfce4-panel", "--property",
                       "/panels/dark-mode", "--set", style == PanelStyle::Dark ? "true" : "false"});
}

QRect Panel::placeOfIcons() const {
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

QRect Panel::waitForIcon() const {
  waitUntil("an icon in the panel", [this] { return !placeOfIcons().isNull(); });
  return placeOfIcons();
}

}  // namespace zephlin::test
