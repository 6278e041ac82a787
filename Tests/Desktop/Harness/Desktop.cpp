#include "Tests/Desktop/Harness/Desktop.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include "Tests/Desktop/Harness/Waiting.h"

namespace zephlin::test {
namespace {

/// Before there is a screen or a bus.
Environment userEnvironment(const std::string& home) {
  const std::string runtimeFolder = "/run/user/" + std::to_string(::getuid());
  std::filesystem::create_directories(runtimeFolder);
  std::filesystem::permissions(runtimeFolder, std::filesystem::perms(0700));
  Environment environment{
      {"HOME", home},
      {"LANG", "C.UTF-8"},
      {"PATH", "/usr/bin:/bin"},
      {"USER", "zephlin"},
      {"XDG_CACHE_HOME", home + "/.cache"},
      {"XDG_CONFIG_HOME", home + "/.config"},
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

/// The icons and the desktop file, which gives windows theirs under Wayland, as the package
/// installs them.
void installApplication(const std::filesystem::path& dataFolder) {
  const std::filesystem::path desktopFile = DESKTOP_FILE;
  std::filesystem::create_directories(dataFolder / "applications");
  std::filesystem::create_symlink(desktopFile,
                                  dataFolder / "applications" / desktopFile.filename());
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
  installApplication(file("share"));
}

Desktop::Desktop(const MakeShell& makeShell)
    : systemBus_("unix:path=" + folder_.file("system-bus")),
      sessionBus_("unix:path=" + folder_.file("session-bus"),
                  [this] {
                    Environment environment = userEnvironment(folder_.path());
                    environment["DISPLAY"] = screen_.display();
                    environment["XDG_DATA_DIRS"] = folder_.dataFolders();
                    becomeEnvironment(environment);
                  }),
      sessionConnection_(QString::fromStdString(sessionBus_.address())),
      logind_(QString::fromStdString(systemBus_.address())),
      keyboards_(std::make_unique<Keyboards>(folder_.path(), bareEnvironment(folder_.path()))),
      fingers_(screen_),
      shell_(makeShell(
          {screen_, sessionConnection_, bareEnvironment(folder_.path()), folder_.path()})) {}

Environment Desktop::bareEnvironment(const std::string& home) const {
  return merged(userEnvironment(home), {{"DBUS_SESSION_BUS_ADDRESS", sessionBus_.address()},
                                        {"DBUS_SYSTEM_BUS_ADDRESS", systemBus_.address()},
                                        {"XDG_DATA_DIRS", folder_.dataFolders()}});
}

Environment Desktop::environment(const std::string& home) const {
  return merged(bareEnvironment(home), shell_->environment());
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
  keyboards_ = std::make_unique<Keyboards>(folder_.path(), bareEnvironment(folder_.path()));
}

Panel& Desktop::panel() {
  if (!panel_) {
    panel_ = shell_->startPanel();
  }
  return *panel_;
}

void Desktop::stopPanel() {
  panel_.reset();
  waitUntil("the tray to go", [this] {
    return !shell_->hasTray(sessionConnection_) && !screen_.hasOwner("_NET_SYSTEM_TRAY_S0");
  });
}

void Desktop::endSession() {
  shell_->endSession();
  screen_.end();
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

}  // namespace zephlin::test
