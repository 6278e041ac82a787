#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "Platform/Keyboard.h"
#include "Platform/Services.h"

namespace zephlin {

class Menu;

/// An action that goes to the first object of the responder chain that knows it.
enum class ResponderAction { Hide, Terminate, Undo, Redo, Cut, Copy, Paste, SelectAll };

/// What a chosen item does: nothing, an action of the program, a responder's action, or the
/// updater's one action.
using MenuAction =
    std::variant<std::monostate, std::function<void()>, ResponderAction, std::weak_ptr<Updater>>;

/// Performs an action of the program, or the updater's if it still exists. False for any other.
/// Main thread.
bool performAction(const MenuAction& action);

/// Whether an item has a check mark. Once set, on or off, the item is a toggle; before that it is a
/// command.
class CheckMark {
 public:
  CheckMark& operator=(bool isOn) {
    isOn_ = isOn;
    isSwitch_ = true;
    return *this;
  }
  explicit operator bool() const { return isOn_; }
  bool operator==(bool isOn) const { return isOn_ == isOn; }
  [[nodiscard]] bool isSwitch() const { return isSwitch_; }

 private:
  bool isOn_ = false;
  bool isSwitch_ = false;
};

/// One entry of a menu, as plain data. Main thread.
struct MenuItem {
  MenuItem(std::string itemTitle, MenuAction itemAction, std::string equivalent = "")
      : title(std::move(itemTitle)),
        action(std::move(itemAction)),
        keyEquivalent(std::move(equivalent)) {}
  static std::shared_ptr<MenuItem> separator();

  /// After a change, StatusItem::menuTitlesDidChange shows it in an open menu.
  std::string title;
  MenuAction action;
  /// Empty for none.
  std::string keyEquivalent;
  ModifierFlags keyEquivalentModifierMask = modifierCommand;
  bool isSeparator = false;
  CheckMark isChecked;
  bool isEnabled = true;
  std::shared_ptr<Menu> submenu;
};

class MenuDelegate {
 public:
  virtual ~MenuDelegate() = default;
  /// Called on the main thread each time the menu is about to open, before it is shown.
  virtual void menuNeedsUpdate(Menu& menu) = 0;
};

/// A menu, as plain data. Main thread.
class Menu {
 public:
  explicit Menu(std::string menuTitle = "") : title(std::move(menuTitle)) {}

  /// Adds an item at the end and returns it.
  std::shared_ptr<MenuItem> add(std::shared_ptr<MenuItem> item);
  void removeAllItems() { items_.clear(); }
  [[nodiscard]] const std::vector<std::shared_ptr<MenuItem>>& items() const { return items_; }

  std::string title;
  /// Whether the platform decides which items are enabled; otherwise each item's flag does.
  bool autoenablesItems = true;
  std::weak_ptr<MenuDelegate> delegate;

 private:
  std::vector<std::shared_ptr<MenuItem>> items_;
};

}  // namespace zephlin
