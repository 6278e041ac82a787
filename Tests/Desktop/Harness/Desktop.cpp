#include "Tests/Desktop/Harness/Desktop.h"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include "Tests/Desktop/Harness/Waiting.h"

namespace zephlin::test {
namespace {

const std::string runtimeFolder = "/run/user/0";

/// Before there is a screen or a bus.
Environment bareEnvironment(const std::string& home) {
  std::filesystem::create_directories(runtimeFolder);
  std::filesystem::permissions(runtimeFolder, std::filesystem::perms(0700));
  Environment environment{
      {"HOME", home},
      {"LANG", "C.UTF-8"},
      {"PATH", "/usr/bin:/bin"},
      {"USER", "root"},
      {"XDG_CACHE_HOME", home + "/.cache"},
      {"XDG_CONFIG_HOME", home + "/.config"},
      {"XDG_CURRENT_DESKTOP", "XFCE"},
      {"XDG_DATA_HOME", home + "/.local/share"},
      {"XDG_RUNTIME_DIR", runtimeFolder},
      {"XDG_STATE_HOME", home + "/.local/state"},
      {"GIO_USE_VFS", "local"},
      {"NO_AT_BRIDGE", "1"},  // GTK's; the panel need not be accessible here.
  };
  for (const char* name : {"ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS"}) {
    if (const char* const value = std::getenv(name)) {
      environment[name] = value;
    }
  }
  return environment;
}

/// As the package installs them.
void installIcons(const std::filesystem::path& dataFolder) {
  const auto folder = dataFolder / "icons/hicolor/scalable/status";
  std::filesystem::create_directories(folder);
  for (const auto& icon : std::filesystem::directory_iterator(ICON_FOLDER)) {
    if (icon.path().extension() == ".svg") {
      std::filesystem::create_symlink(icon.path(), folder / icon.path().filename());
    }
  }
}

}  // namespace

SessionFolder::SessionFolder() {
  writePanelSettings(file(".config"));
  installIcons(file("share"));
}

Desktop::Desktop()
    : systemBus_("unix:path=" + folder_.file("system-bus")),
      sessionBus_("unix:path=" + folder_.file("session-bus"),
                  [this] {
                    Environment environment = bareEnvironment(folder_.path());
                    environment["DISPLAY"] = screen_.display();
                    environment["XDG_DATA_DIRS"] = folder_.dataFolders();
                    becomeEnvironment(environment);
                  }),
      sessionConnection_(QString::fromStdString(sessionBus_.address())),
      windowManager_({"/usr/bin/openbox", "--sm-disable"}, sessionEnvironment(),
                     logFile("window-manager")),
      logind_(QString::fromStdString(systemBus_.address())),
      keyboards_(std::make_unique<Keyboards>(folder_.path(), sessionEnvironment())),
      fingers_(screen_) {
  waitUntil("a window manager", [this] {
    const XConnection& server = screen_.connection();
    return !server.property(server.root(), "_NET_SUPPORTING_WM_CHECK").empty();
  });
}

Environment Desktop::environment(const std::string& home) const {
  Environment environment = bareEnvironment(home);
  environment["DISPLAY"] = screen_.display();
  environment["DBUS_SESSION_BUS_ADDRESS"] = sessionBus_.address();
  environment["DBUS_SYSTEM_BUS_ADDRESS"] = systemBus_.address();
  environment["XDG_DATA_DIRS"] = folder_.dataFolders();
  return environment;
}

std::string Desktop::makeHome() {
  const std::string home = folder_.file("home-" + std::to_string(++homes_));
  std::filesystem::create_directory(home);
  return home;
}

std::string Desktop::logFile(const std::string& name) const {
  return folder_.file(name + ".log");
}

void Desktop::restartKeyboards() {
  keyboards_.reset();
  keyboards_ = std::make_unique<Keyboards>(folder_.path(), sessionEnvironment());
}

Panel& Desktop::panel() {
  if (!panel_) {
    panel_ =
        std::make_unique<Panel>(sessionConnection_, screen_, folder_.path(), sessionEnvironment());
  }
  return *panel_;
}

void Desktop::stopPanel() {
  panel_.reset();
  waitUntil("the tray to go", [this] {
    return !sessionConnection_.hasName(trayWatcher) && !screen_.hasOwner("_NET_SYSTEM_TRAY_S0");
  });
}

QStringList Desktop::registeredItems() const {
  if (!sessionConnection_.hasName(trayWatcher)) {
    return {};
  }
  return sessionConnection_
      .property(
          {trayWatcher, "/StatusNotifierWatcher", trayWatcher, "RegisteredStatusNotifierItems"})
      .toStringList();
}

void Desktop::photograph(const std::string& name) const {
  waitUntil("a still screen", [this] { return screen_.isStill(); });
  photographNow(name);
}

void Desktop::photographNow(const std::string& name) const {
  std::filesystem::create_directories(SCREENSHOT_FOLDER);
  const std::string file = SCREENSHOT_FOLDER "/" + name + ".png";
  if (!screen_.picture().save(QString::fromStdString(file))) {
    throw std::runtime_error("cannot write " + file);
  }
}

Environment Desktop::sessionEnvironment() const {
  return environment(folder_.path());
}

}  // namespace zephlin::test
