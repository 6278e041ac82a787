#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "Platform/Menu.h"

namespace zephlin::test {

/// A menu as an application has it: rebuilt from scratch whenever its delegate is asked.
class SampleMenu final : public MenuDelegate, public std::enable_shared_from_this<SampleMenu> {
 public:
  static std::shared_ptr<SampleMenu> make() {
    auto sample = std::make_shared<SampleMenu>();
    sample->menu->delegate = sample;
    sample->menu->autoenablesItems = false;
    return sample;
  }

  void menuNeedsUpdate(Menu& shown) override {
    ++rebuilds;
    shown.removeAllItems();
    shown.add(std::make_shared<MenuItem>("Salt & Pepper", std::monostate()))->isEnabled = false;
    statusLine = shown.add(std::make_shared<MenuItem>(status, std::monostate()));
    shown.add(MenuItem::separator());
    if (isSwitchThere) {
      addCommand(shown, "Switch", [this] {
        isOn = !isOn;
        ++switchings;
      })->isChecked = isOn;
    }
    addCommand(shown, "Command", [this] {
      if (commandChosen) {
        commandChosen();
      }
    })->isEnabled = isOn;
    for (int number = 0; number < extraItems; ++number) {
      addCommand(shown, "Extra", [] {});
    }
    addCommand(
        shown, "Quit", [] {}, "q");
  }

  static constexpr int itemsWithoutExtras = 6;

  std::shared_ptr<Menu> menu = std::make_shared<Menu>();
  std::weak_ptr<MenuItem> statusLine;
  std::function<void()> commandChosen;
  std::string status = "Checking…";
  bool isSwitchThere = true;
  bool isOn = true;
  int extraItems = 0;
  int rebuilds = 0;
  int switchings = 0;

 private:
  static std::shared_ptr<MenuItem> addCommand(Menu& shown, const char* title,
                                              std::function<void()> action,
                                              const char* keyEquivalent = "") {
    return shown.add(std::make_shared<MenuItem>(title, std::move(action), keyEquivalent));
  }
};

}  // namespace zephlin::test
