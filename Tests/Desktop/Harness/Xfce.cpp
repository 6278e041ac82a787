#include "Tests/Desktop/Harness/Xfce.h"

#include <cstring>
#include <filesystem>
#include <fstream>

namespace zephlin::test {
namespace {

constexpr const char* xfcePanelSettings = R"(<?xml version="1.0" encoding="UTF-8"?>
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

/// Writes the settings of a dark panel along the upper edge that holds nothing but a tray, so that
/// nothing is asked at its first start.
void writeXfcePanelSettings(const std::string& configurationFolder) {
  const std::filesystem::path folder = configurationFolder + "/xfce4/xfconf/xfce-perchannel-xml";
  std::filesystem::create_directories(folder);
  std::ofstream(folder / "xfce4-panel.xml") << xfcePanelSettings;
}

/// Takes status notifier items and icons of the older kind.
class XfcePanel final : public Panel {
 public:
  XfcePanel(const Seat& seat, const Environment& environment)
      : Panel(seat.screen),
        screen_(seat.screen),
        environment_(environment),
        program_({"/usr/bin/xfce4-panel", "--disable-wm-check"}, environment,
                 seat.folder + "/panel.log") {
    waitUntil("a tray", [&] { return hostIsReady(seat.sessionBus); });
    place_ = seat.screen.placeOf(seat.screen.waitForWindow("xfce4-panel"));
  }

  [[nodiscard]] QRect place() const override { return place_; }

  void setStyle(PanelStyle style) override {
    runIn(environment_,
          {"/usr/bin/xfconf-query", "--channel", "xfce4-panel", "--property", "/panels/dark-mode",
           "--set", style == PanelStyle::Dark ? "true" : "false"});
    waitUntil("the panel's style", [&] {
      constexpr int middleGray = 128;
      const QRect corner(place_.topLeft(), QSize(1, 1));
      return (qGray(screen_.picture(corner).pixel(0, 0)) > middleGray) ==
             (style == PanelStyle::Light);
    });
  }

 private:
  const Screen& screen_;
  Environment environment_;
  Program program_;
  QRect place_;
};

class Xfce final : public Shell {
 public:
  explicit Xfce(const Seat& seat)
      : seat_(seat),
        windowManager_({"/usr/bin/openbox", "--sm-disable"}, programEnvironment(),
                       seat.folder + "/window-manager.log") {
    writeXfcePanelSettings(seat.folder + "/.config");
    waitUntil("a window manager", [this] {
      return !server().property(server().root(), "_NET_SUPPORTING_WM_CHECK").empty();
    });
  }

  [[nodiscard]] std::string name() const override { return "xfce"; }

  [[nodiscard]] Environment environment() const override {
    return {{"DISPLAY", seat_.screen.display()}, {"XDG_CURRENT_DESKTOP", "XFCE"}};
  }

  std::unique_ptr<Panel> startPanel() override {
    return std::make_unique<XfcePanel>(seat_, programEnvironment());
  }

  [[nodiscard]] std::vector<ShownWindow> windows() const override {
    return listedWindows(seat_.screen);
  }

  /// The X server ends last, with the desktop: its programs are asked to end before.
  void endSession() override { windowManager_.send(SIGTERM); }

 private:
  [[nodiscard]] const XConnection& server() const { return seat_.screen.connection(); }

  [[nodiscard]] Environment programEnvironment() const {
    return merged(seat_.environment, environment());
  }

  Seat seat_;
  Program windowManager_;
};

}  // namespace

std::unique_ptr<Shell> makeXfce(const Seat& seat) {
  return std::make_unique<Xfce>(seat);
}

}  // namespace zephlin::test
