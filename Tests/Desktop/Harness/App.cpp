#include "Tests/Desktop/Harness/App.h"

#include <utility>

#include "Tests/Desktop/Harness/Waiting.h"

namespace zephlin::test {
namespace {

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
    item_ = std::make_unique<TrayItem>(desktop_.sessionBus(), program_.id());
  }
  return *item_;
}

TrayMenu& App::menu() {
  if (!menu_) {
    menu_ = item().menu();
  }
  return *menu_;
}

void App::waitForStatusLine(const std::string& text) {
  menu().aboutToShow();
  std::string line;
  waitUntil([&] { return "the status line " + text + " instead of " + line; },
            [&] {
              line = menu().statusLine();
              return line == text;
            });
}

int App::quit() {
  menu().aboutToShow();
  menu().opened();
  const int id = menu().entry("Quit Zephlin").id;
  menu().closed();
  menu().clickAtOnce(id);
  return program_.waitForEnd();
}

void App::waitForToolTip(const std::string& text) {
  waitUntil("the tool tip " + text, [&] { return item().toolTip() == text; });
}

}  // namespace zephlin::test
