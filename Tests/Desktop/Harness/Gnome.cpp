#include "Tests/Desktop/Harness/Gnome.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <utility>

#include "Tests/Support/Files.h"

namespace zephlin::test {
namespace {

/// Nothing moves, and nothing is asked at the first start.
constexpr const char* gnomeSettings = R"([org/gnome/desktop/background]
picture-options='none'
primary-color='#4A6B7C'

[org/gnome/desktop/interface]
enable-animations=false

[org/gnome/shell]
enabled-extensions=@as []
welcome-dialog-last-shown-version='99'
)";

/// Runs JavaScript in the shell, which allows that with --unsafe-mode, and returns the result as
/// JSON.
QString evaluate(const BusConnection& sessionBus, const QString& script) {
  const QVariantList reply =
      sessionBus.call({"org.gnome.Shell", "/org/gnome/Shell", "org.gnome.Shell", "Eval"}, {script});
  if (!reply.at(0).toBool()) {
    throw std::runtime_error("GNOME Shell: " + reply.at(1).toString().toStdString());
  }
  return reply.at(1).toString();
}

/// The part of the top bar between the clock and the system's own menu.
class GnomePanel final : public Panel {
 public:
  GnomePanel(const Seat& seat, Environment environment)
      : Panel(seat.screen), seat_(seat), environment_(std::move(environment)) {
    setExtensions("['ubuntu-appindicators@ubuntu.com']");
    waitUntil("a tray", [&] { return hostIsReady(seat_.sessionBus); });
  }
  ~GnomePanel() override { setExtensions("[]"); }

  [[nodiscard]] QRect place() const override {
    const auto box =
        QJsonDocument::fromJson(
            evaluate(seat_.sessionBus,
                     "[Main.panel._centerBox, Main.panel.statusArea.quickSettings].map("
                     "  actor => actor.get_transformed_extents()).map("
                     "  extents => [extents.get_x(), extents.get_width(), extents.get_height()])")
                .toUtf8())
            .array();
    const QJsonArray clock = box.at(0).toArray();
    const QJsonArray menu = box.at(1).toArray();
    const int left = clock.at(0).toInt() + clock.at(1).toInt();
    return {left, 0, menu.at(0).toInt() - left, menu.at(2).toInt()};
  }

  [[nodiscard]] std::vector<PanelStyle> styles() const override { return {PanelStyle::Dark}; }

  void setStyle(PanelStyle /*style*/) override {}

  /// The extension loses an item that is clicked before the extension has read all about it.
  [[nodiscard]] QRect placeOfIcons() const override {
    const QString areRead =
        evaluate(seat_.sessionBus,
                 "Object.values(Main.panel.statusArea).map(icon => icon._indicator)"
                 "  .every(indicator => !indicator?._proxy || indicator._commandLine)");
    return areRead == "true" ? Panel::placeOfIcons() : QRect();
  }

 private:
  void setExtensions(const std::string& list) {
    runIn(environment_,
          {"/usr/bin/gsettings", "set", "org.gnome.shell", "enabled-extensions", list});
  }

  Seat seat_;
  Environment environment_;
};

class Gnome final : public Shell {
 public:
  explicit Gnome(const Seat& seat) : seat_(seat), shell_(start()) {
    waitUntil("GNOME Shell", [this] { return hasStarted(); });
    // It starts with an overview of all windows, and shows that scripts are allowed.
    evaluate(seat_.sessionBus,
             "Main.overview.hide(); Main.panel.statusArea.quickSettings._unsafeMode.hide()");
  }

  [[nodiscard]] std::string name() const override { return "gnome"; }

  [[nodiscard]] Environment environment() const override {
    return {{"GSETTINGS_BACKEND", "keyfile"},
            {"WAYLAND_DISPLAY", display},
            {"XDG_CURRENT_DESKTOP", "GNOME"},
            {"XDG_SESSION_TYPE", "wayland"}};
  }

  std::unique_ptr<Panel> startPanel() override {
    return std::make_unique<GnomePanel>(seat_, merged(seat_.environment, environment()));
  }

  [[nodiscard]] std::vector<ShownWindow> windows() const override {
    return windowsInJson(
        evaluate(
            seat_.sessionBus,
            "global.get_window_actors().map(actor => actor.meta_window)"
            "  .filter(window => !window.minimized).map(window => [window.title, window.get_pid(),"
            "    window.get_frame_rect(), window.has_focus()]).map(([title, process, place, "
            "active]) =>"
            "    [title, process, place.x, place.y, place.width, place.height, active])")
            .toUtf8());
  }

  void endSession() override {
    shell_.send(SIGTERM);
    shell_.waitForEnd();
  }

 private:
  static constexpr const char* display = "wayland-gnome";

  Program start() {
    const std::filesystem::path settings = seat_.folder + "/.config/glib-2.0/settings";
    std::filesystem::create_directories(settings);
    writeTo(settings / "keyfile", gnomeSettings);
    // Otherwise it says once that it cannot lock the screen here.
    const std::filesystem::path data = seat_.folder + "/.local/share/gnome-shell";
    std::filesystem::create_directories(data);
    writeTo(data / "lock-warning-shown", "");
    const QSize size = seat_.screen.size();
    return {{"/usr/bin/gnome-shell", "--nested", "--wayland", "--wayland-display", display,
             "--unsafe-mode"},
            merged(merged(seat_.environment, environment()),
                   {{"DISPLAY", seat_.screen.display()},
                    {"LIBGL_ALWAYS_SOFTWARE", "1"},
                    {"MUTTER_DEBUG_DUMMY_MODE_SPECS",
                     std::to_string(size.width()) + "x" + std::to_string(size.height())}}),
            seat_.folder + "/gnome-shell.log"};
  }

  [[nodiscard]] bool hasStarted() const {
    try {
      return evaluate(seat_.sessionBus, "Main.layoutManager._startingUp") == "false";
    } catch (const std::runtime_error&) {
      return false;
    }
  }

  Seat seat_;
  Program shell_;
};

}  // namespace

std::unique_ptr<Shell> makeGnome(const Seat& seat) {
  return std::make_unique<Gnome>(seat);
}

}  // namespace zephlin::test
