#include "Tests/Desktop/Harness/App.h"

#include <utility>

#include "Tests/Desktop/Harness/Waiting.h"

namespace zephlin::test {
namespace {

/// What a watcher's entry names: a bus name and, from its first slash on, an object.
struct Address {
  QString service;
  QString path;
};

Address addressIn(const QString& item) {
  const auto slash = item.indexOf('/');
  return slash < 0 ? Address{item, "/StatusNotifierItem"}
                   : Address{item.left(slash), item.mid(slash)};
}

std::unique_ptr<TrayItem> waitForItem(Desktop& desktop, pid_t process) {
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

Environment merged(Environment under, const Environment& over) {
  for (const auto& [name, value] : over) {
    under[name] = value;
  }
  return under;
}

}  // namespace

App::App(Desktop& desktop, Launch launch)
    : desktop_(desktop),
      home_(launch.home.empty() ? desktop.makeHome() : launch.home),
      environment_(merged(desktop.environment(home_), launch.environment)),
      program_(launch.command, environment_, home_ + "/application.log") {}

TrayItem& App::item() {
  if (!item_) {
    item_ = waitForItem(desktop_, program_.id());
  }
  return *item_;
}

void App::waitForStatusLine(const std::string& text) {
  item().aboutToShow();
  std::string line;
  waitUntil([&] { return "the status line " + text + " instead of " + line; },
            [&] {
              line = item().statusLine();
              return line == text;
            });
}

int App::quit() {
  item().aboutToShow();
  item().opened();
  const int id = item().entry("Quit Zephlin").id;
  item().closed();
  item().clickAtOnce(id);
  return program_.waitForEnd();
}

void App::waitForToolTip(const std::string& text) {
  waitUntil("the tool tip " + text, [&] { return item().toolTip() == text; });
}

}  // namespace zephlin::test
