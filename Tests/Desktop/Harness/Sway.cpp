#include "Tests/Desktop/Harness/Sway.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace zephlin::test {
namespace {

constexpr int panelHeight = 32;

/// Windows have borders with their title, as they do where nothing is configured.
constexpr const char* swaySettings = R"(
output * bg #4A6B7C solid_color
xwayland disable
)";

constexpr const char* waybarSettings = R"({
  "position": "top",
  "height": 32,
  "modules-right": ["tray"],
  "tray": {"icon-size": 20}
})";

void write(const std::string& file, const std::string& text) {
  std::ofstream(file) << text;
}

/// The outermost rectangle of a window in sway's tree, or a part of it.
QRect rectangle(const QJsonObject& window, const char* name) {
  const QJsonObject rectangle = window[name].toObject();
  return {rectangle["x"].toInt(), rectangle["y"].toInt(), rectangle["width"].toInt(),
          rectangle["height"].toInt()};
}

void addWindows(const QJsonObject& node, std::vector<ShownWindow>& windows) {
  if (node["visible"].toBool() && node.contains("pid")) {
    windows.push_back({node["name"].toString().toStdString(), node["pid"].toInt(),
                       rectangle(node, "window_rect").translated(rectangle(node, "rect").topLeft()),
                       node["focused"].toBool()});
  }
  for (const char* const list : {"nodes", "floating_nodes"}) {
    for (const QJsonValue child : node[list].toArray()) {
      addWindows(child.toObject(), windows);
    }
  }
}

class Waybar final : public Panel {
 public:
  Waybar(const Seat& seat, const Environment& environment)
      : Panel(seat.screen), seat_(seat), program_(start(environment)) {
    waitUntil("a tray", [this] { return hostIsReady(seat_.sessionBus); });
    waitUntil("the panel", [this] { return look() == PanelStyle::Dark; });
  }

  [[nodiscard]] QRect place() const override {
    return {0, 0, seat_.screen.size().width(), panelHeight};
  }

  void setStyle(PanelStyle style) override {
    writeStyle(style);
    program_.send(SIGUSR2);
    waitUntil("the panel's style", [&] { return look() == style; });
    waitUntil("a tray", [this] { return hostIsReady(seat_.sessionBus); });
  }

 private:
  static constexpr QRgb dark = 0xFF202020;
  static constexpr QRgb light = 0xFFF0F0F0;

  Program start(const Environment& environment) {
    write(settingsFile(), waybarSettings);
    writeStyle(PanelStyle::Dark);
    return {{"/usr/bin/waybar", "--config", settingsFile(), "--style", styleFile()},
            environment,
            seat_.folder + "/panel.log"};
  }

  [[nodiscard]] std::string settingsFile() const { return seat_.folder + "/waybar"; }
  [[nodiscard]] std::string styleFile() const { return seat_.folder + "/waybar.css"; }

  void writeStyle(PanelStyle style) const {
    write(styleFile(), style == PanelStyle::Dark
                           ? "window#waybar { background: #202020; color: #F0F0F0; }"
                           : "window#waybar { background: #F0F0F0; color: #202020; }");
  }

  [[nodiscard]] std::optional<PanelStyle> look() const {
    const QImage picture = seat_.screen.picture(place());
    const QRgb background = picture.pixel(picture.rect().center());
    if (background == dark || background == light) {
      return background == dark ? PanelStyle::Dark : PanelStyle::Light;
    }
    return std::nullopt;
  }

  Seat seat_;
  Program program_;
};

class Sway final : public Shell {
 public:
  explicit Sway(const Seat& seat) : seat_(seat), compositor_(start()) {
    waitUntil([this] { return "sway: " + compositor_.log(); },
              [this] {
                return ask({"-t", "get_version"}).status == 0 || compositor_.hasEnded();
              });
    if (compositor_.hasEnded()) {
      throw std::runtime_error("sway has ended: " + compositor_.log());
    }
  }

  [[nodiscard]] std::string name() const override { return "sway"; }

  [[nodiscard]] Environment environment() const override {
    return {{"SWAYSOCK", socket()},
            {"WAYLAND_DISPLAY", display},
            {"XDG_CURRENT_DESKTOP", "sway"},
            {"XDG_SESSION_TYPE", "wayland"}};
  }

  std::unique_ptr<Panel> startPanel() override {
    return std::make_unique<Waybar>(seat_, merged(seat_.environment, environment()));
  }

  [[nodiscard]] std::vector<ShownWindow> windows() const override {
    const Outcome tree = ask({"--raw", "-t", "get_tree"});
    if (tree.status != 0) {
      throw std::runtime_error("swaymsg: " + tree.errors);
    }
    std::vector<ShownWindow> windows;
    addWindows(QJsonDocument::fromJson(QByteArray::fromStdString(tree.output)).object(), windows);
    return windows;
  }

  void endSession() override {
    ask({"exit"});
    compositor_.waitForEnd();
  }

 private:
  /// The first that it tries.
  static constexpr const char* display = "wayland-1";

  Program start() {
    const std::string runtimeFiles = seat_.environment.at("XDG_RUNTIME_DIR");
    // Of one that was killed.
    std::filesystem::remove(runtimeFiles + "/" + display);
    write(settingsFile(), swaySettings);
    return {{"/usr/bin/sway", "--config", settingsFile()},
            merged(merged(seat_.environment, environment()), {{"DISPLAY", seat_.screen.display()},
                                                              {"WLR_BACKENDS", "x11"},
                                                              {"WLR_RENDERER", "pixman"}}),
            seat_.folder + "/sway.log"};
  }

  [[nodiscard]] std::string settingsFile() const { return seat_.folder + "/sway"; }
  [[nodiscard]] std::string socket() const { return seat_.folder + "/sway-socket"; }

  Outcome ask(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), "/usr/bin/swaymsg");
    return runIn(merged(seat_.environment, environment()), arguments);
  }

  Seat seat_;
  Program compositor_;
};

}  // namespace

std::unique_ptr<Shell> makeSway(const Seat& seat) {
  return std::make_unique<Sway>(seat);
}

}  // namespace zephlin::test
