#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <utility>

#include "Tests/Desktop/Harness/Desktop.h"
#include "Tests/Desktop/Harness/Waiting.h"
#include "Tests/Support/TrayItem.h"

namespace zephlin::test {

/// What a watcher's entry names: a bus name and, from its first slash on, an object.
struct Address {
  QString service;
  QString path;
};

inline Address addressIn(const QString& item) {
  const auto slash = item.indexOf('/');
  if (slash < 0) {
    return {item, "/StatusNotifierItem"};
  }
  // GNOME's extension has an @ between them.
  return {item.left(slash).remove('@'), item.mid(slash)};
}

inline std::unique_ptr<TrayItem> waitForItem(Desktop& desktop, pid_t process) {
  Address found;
  waitUntil("a tray item of the process " + std::to_string(process), [&] {
    for (const QString& item : desktop.registeredItems()) {
      const Address address = addressIn(item);
      if (desktop.sessionBus().ownerOf(address.service) == process) {
        found = address;
      }
    }
    return !found.service.isEmpty();
  });
  return std::make_unique<TrayItem>(found.service, found.path,
                                    QString::fromStdString(desktop.sessionBusAddress()));
}

/// How the application is started.
struct Launch {
  /// With the settings in it; an empty text for a new one.
  std::string home{};
  std::vector<std::string> command{"/usr/bin/Zephlin"};
  /// Over the session's.
  Environment environment{};
};

/// The application, running in the session. It is killed at the end.
class App {
 public:
  explicit App(Desktop& desktop, Launch launch = {})
      : desktop_(desktop),
        home_(launch.home.empty() ? desktop.makeHome() : launch.home),
        environment_(merged(desktop.environment(home_), launch.environment)),
        program_(launch.command, environment_, home_ + "/application.log") {}

  [[nodiscard]] const std::string& home() const { return home_; }
  [[nodiscard]] Program& program() { return program_; }
  [[nodiscard]] const Program& program() const { return program_; }

  /// The session's environment with this instance's home, for programs of the same user.
  [[nodiscard]] const Environment& environment() const { return environment_; }

  /// Its item and menu; waits until a host knows the item.
  TrayItem& item() {
    if (!item_) {
      item_ = waitForItem(desktop_, program_.id());
    }
    return *item_;
  }

  /// Opens the menu and waits until its status line is this text.
  void waitForStatusLine(const std::string& text) {
    item().aboutToShow();
    std::string line;
    waitUntil([&] { return "the status line " + text + " instead of " + line; },
              [&] {
                line = item().statusLine();
                return line == text;
              });
  }

  void waitForToolTip(const std::string& text) {
    waitUntil("the tool tip " + text, [&] { return item().toolTip() == text; });
  }

  /// Opens the menu, chooses "Quit Zephlin" and returns the exit status. It may end before it has
  /// answered the choice.
  int quit() {
    item().aboutToShow();
    item().opened();
    const int id = item().entry("Quit Zephlin").id;
    item().closed();
    item().clickAtOnce(id);
    return program_.waitForEnd();
  }

 private:
  Desktop& desktop_;
  std::string home_;
  Environment environment_;
  Program program_;
  std::unique_ptr<TrayItem> item_;
};

}  // namespace zephlin::test
