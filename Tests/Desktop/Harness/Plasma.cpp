#include "Tests/Desktop/Harness/Plasma.h"

#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <utility>

#include "Tests/Support/Files.h"

namespace zephlin::test {
namespace {

constexpr int plasmaPanelHeight = 44;

/// Nothing moves.
constexpr const char* globalSettings = R"([KDE]
AnimationDurationFactor=0
)";

constexpr const char* activitySettings = R"([activities]
5c5e8a4e-0d36-4c0c-9b2d-2f1d7f1b4a10=Default

[main]
currentActivity=5c5e8a4e-0d36-4c0c-9b2d-2f1d7f1b4a10
)";

constexpr const char* panelViewSettings = R"([PlasmaViews][Panel 2]
floating=0
panelOpacity=1

[PlasmaViews][Panel 2][Defaults]
thickness=44
)";

/// A plain desktop and a panel with the list of windows and a tray in which nothing is but
/// programs' items, all of them shown.
constexpr const char* desktopSettings = R"([Containments][1]
activityId=5c5e8a4e-0d36-4c0c-9b2d-2f1d7f1b4a10
formfactor=0
immutability=1
lastScreen=0
location=0
plugin=org.kde.desktopcontainment
wallpaperplugin=org.kde.color

[Containments][1][Wallpaper][org.kde.color][General]
Color=74,107,124

[Containments][2]
activityId=
formfactor=2
immutability=1
lastScreen=0
location=4
plugin=org.kde.panel

[Containments][2][General]
AppletOrder=3;4

[Containments][2][Applets][3]
immutability=1
plugin=org.kde.plasma.icontasks

[Containments][2][Applets][3][Configuration][General]
launchers=

[Containments][2][Applets][4]
immutability=1
plugin=org.kde.plasma.systemtray

[Containments][2][Applets][4][Configuration]
SystrayContainmentId=5

[Containments][5]
activityId=
formfactor=2
immutability=1
lastScreen=0
location=4
plugin=org.kde.plasma.private.systemtray

[Containments][5][General]
extraItems=
knownItems=org.kde.kscreen,org.kde.plasma.battery,org.kde.plasma.bluetooth,org.kde.plasma.brightness,org.kde.plasma.clipboard,org.kde.plasma.devicenotifier,org.kde.plasma.keyboardindicator,org.kde.plasma.keyboardlayout,org.kde.plasma.manage-inputmethod,org.kde.plasma.mediacontroller,org.kde.plasma.networkmanagement,org.kde.plasma.nightcolorcontrol,org.kde.plasma.notifications,org.kde.plasma.printmanager,org.kde.plasma.vault,org.kde.plasma.volume
showAllItems=true
)";

/// Its argument is printed first, so that a reply is told from earlier ones.
constexpr const char* listingScript = R"(print("%1 " + JSON.stringify(workspace.clientList()
  .filter(window => window.normalWindow && !window.minimized)
  .map(window => [window.caption, window.pid, window.bufferGeometry.x, window.bufferGeometry.y,
                  window.bufferGeometry.width, window.bufferGeometry.height, window.active])));)";

void writeStyle(const Seat& seat, PanelStyle style) {
  writeTo(seat.folder + "/.config/plasmarc",
          std::string("[Theme]\nname=") +
              (style == PanelStyle::Dark ? "breeze-dark" : "breeze-light") + "\n");
}

void writeSettings(const Seat& seat) {
  const std::string folder = seat.folder + "/.config/";
  std::filesystem::create_directories(folder);
  writeTo(folder + "kdeglobals", globalSettings);
  writeTo(folder + "kactivitymanagerdrc", activitySettings);
  writeTo(folder + "plasmashellrc", panelViewSettings);
  writeTo(folder + "plasma-org.kde.plasma.desktop-appletsrc", desktopSettings);
}

class PlasmaPanel final : public Panel {
 public:
  PlasmaPanel(const Seat& seat, const Environment& environment)
      : Panel(seat.screen),
        seat_(seat),
        program_({"/usr/bin/plasmashell", "--no-respawn"}, environment,
                 seat.folder + "/plasmashell.log") {
    writeStyle(seat_, PanelStyle::Dark);
    waitUntil("a tray", [this] { return hostIsReady(seat_.sessionBus); });
    waitUntil("the panel", [this] { return qGray(background()) < middleGray; });
  }

  /// Without the panel's edge, and without the list of windows at its beginning.
  [[nodiscard]] QRect place() const override {
    constexpr int edge = 4;
    const QSize size = seat_.screen.size();
    return {size.width() / 2, size.height() - plasmaPanelHeight + edge, size.width() / 2,
            plasmaPanelHeight - 2 * edge};
  }

  void setStyle(PanelStyle style) override {
    writeStyle(seat_, style);
    waitUntil("the panel's style",
              [&] { return (qGray(background()) < middleGray) == (style == PanelStyle::Dark); });
  }

 private:
  static constexpr int middleGray = 64;

  [[nodiscard]] QRgb background() const {
    const QImage picture = seat_.screen.picture(place());
    return picture.pixel(picture.rect().center());
  }

  Seat seat_;
  Program program_;
};

/// What both kinds of session have. KWin is started first, by the derived class.
class Plasma : public Shell {
 public:
  [[nodiscard]] Environment environment() const override { return environment_; }

  std::unique_ptr<Panel> startPanel() override {
    return std::make_unique<PlasmaPanel>(seat_, programEnvironment());
  }

  /// The watcher, which is a program of its own, always says so.
  [[nodiscard]] bool hasTray(const BusConnection& sessionBus) const override {
    return sessionBus.hasName("org.kde.plasmashell");
  }

  void endSession() override {
    compositor_.send(SIGTERM);
    compositor_.waitForEnd();
  }

 protected:
  Plasma(const Seat& seat, const Environment& environment, const std::vector<std::string>& command)
      : seat_(seat),
        environment_(merged({{"KDE_FULL_SESSION", "true"},
                             {"KDE_SESSION_VERSION", "5"},
                             {"XDG_CURRENT_DESKTOP", "KDE"}},
                            environment)),
        compositor_(start(command)) {
    waitUntil("KWin", [this] { return seat_.sessionBus.hasName("org.kde.KWin"); });
    // What the bus starts is part of this session, too.
    std::vector<std::string> update{"/usr/bin/dbus-update-activation-environment"};
    for (const auto& [name, value] : environment_) {
      update.push_back(name + "=" + value);
    }
    runIn(programEnvironment(), update);
    services_ = std::make_unique<Program>(std::vector<std::string>{"/usr/bin/kded5"},
                                          programEnvironment(), seat_.folder + "/kded5.log");
  }

  [[nodiscard]] const Seat& seat() const { return seat_; }
  [[nodiscard]] const Program& compositor() const { return compositor_; }

 private:
  [[nodiscard]] Environment programEnvironment() const {
    return merged(merged(seat_.environment, environment_),
                  {{"LIBGL_ALWAYS_SOFTWARE", "1"}, {"QT_QUICK_BACKEND", "software"}});
  }

  Program start(const std::vector<std::string>& command) {
    writeSettings(seat_);
    return {command,
            merged(programEnvironment(),
                   {{"DISPLAY", seat_.screen.display()}, {"QT_LOGGING_RULES", "js.debug=true"}}),
            seat_.folder + "/kwin.log"};
  }

  Seat seat_;
  Environment environment_;
  Program compositor_;
  std::unique_ptr<Program> services_;  ///< The tray's watcher is one of them.
};

class PlasmaOnWayland final : public Plasma {
 public:
  explicit PlasmaOnWayland(const Seat& seat)
      : Plasma(seat, {{"WAYLAND_DISPLAY", display}, {"XDG_SESSION_TYPE", "wayland"}},
               commandFor(seat)) {}

  [[nodiscard]] std::string name() const override { return "plasma"; }

  [[nodiscard]] std::vector<ShownWindow> windows() const override {
    const QString file = QString::fromStdString(seat().folder + "/list-windows.js");
    const QString head = "windows " + QString::number(monotonicSeconds(), 'f');
    writeTo(file.toStdString(), QString(listingScript).arg(head).toStdString());
    const int script = askScripting("loadScript", {file, head}).at(0).toInt();
    seat().sessionBus.call(
        {"org.kde.KWin", "/" + QString::number(script), "org.kde.kwin.Script", "run"});
    compositor().waitForLog(head.toStdString());
    askScripting("unloadScript", {head});
    return parse(compositor().log(), head.toStdString() + " ");
  }

 private:
  static constexpr const char* display = "wayland-plasma";

  static std::vector<std::string> commandFor(const Seat& seat) {
    // A copy has no capabilities, which a container may not allow.
    const std::string program = seat.folder + "/kwin_wayland";
    std::filesystem::copy_file("/usr/bin/kwin_wayland", program);
    const QSize size = seat.screen.size();
    return {program,
            "--x11-display",
            seat.screen.display(),
            "--width",
            std::to_string(size.width()),
            "--height",
            std::to_string(size.height()),
            "--no-lockscreen",
            "--no-global-shortcuts",
            "--socket",
            display};
  }

  QVariantList askScripting(const QString& method, const QVariantList& arguments) const {
    return seat().sessionBus.call({"org.kde.KWin", "/Scripting", "org.kde.kwin.Scripting", method},
                                  arguments);
  }

  static std::vector<ShownWindow> parse(const std::string& log, const std::string& head) {
    const auto begin = log.find(head) + head.size();
    const std::string line = log.substr(begin, log.find('\n', begin) - begin);
    return windowsInJson(QByteArray::fromStdString(line));
  }
};

class PlasmaOnX11 final : public Plasma {
 public:
  explicit PlasmaOnX11(const Seat& seat)
      : Plasma(seat, {{"DISPLAY", seat.screen.display()}, {"XDG_SESSION_TYPE", "x11"}},
               {"/usr/bin/kwin_x11"}) {}

  [[nodiscard]] std::string name() const override { return "plasma-x11"; }

  [[nodiscard]] std::vector<ShownWindow> windows() const override {
    return listedWindows(seat().screen);
  }
};

}  // namespace

std::unique_ptr<Shell> makePlasmaOnWayland(const Seat& seat) {
  return std::make_unique<PlasmaOnWayland>(seat);
}

std::unique_ptr<Shell> makePlasmaOnX11(const Seat& seat) {
  return std::make_unique<PlasmaOnX11>(seat);
}

}  // namespace zephlin::test
