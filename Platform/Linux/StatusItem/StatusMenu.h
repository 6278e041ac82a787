#pragma once

#include <QObject>
#include <QStringList>
#include <functional>
#include <memory>
#include <vector>

#include "Platform/Menu.h"

namespace zephlin {

/// The menu of a status item, for whatever shows it: the entries it has now, and what choosing one
/// does. Main thread.
class StatusMenu {
 public:
  /// `changed` is called when the entries may have changed, also while the menu is open.
  StatusMenu(std::function<bool()> isTerminating, std::function<void()> changed)
      : isTerminating_(std::move(isTerminating)), changed_(std::move(changed)) {}

  /// Shown from the next update() on.
  void setMenu(std::shared_ptr<Menu> menu) { menu_ = std::move(menu); }
  [[nodiscard]] const std::vector<std::shared_ptr<MenuItem>>& items() const {
    return menu_->items();
  }
  [[nodiscard]] bool isEnabled(const MenuItem& item) const;

  /// Asks the menu's delegate for its items. To be called before the menu is shown.
  void update();
  /// Calls `changed`.
  void itemsDidChange() { changed_(); }
  /// Performs the item's action from the event loop, if the item is enabled, and updates the menu
  /// then unless the application is terminating.
  void choose(const MenuItem& item);

 private:
  void perform(const MenuAction& action);

  std::function<bool()> isTerminating_;
  std::function<void()> changed_;
  std::shared_ptr<Menu> menu_ = std::make_shared<Menu>();
  // Destroyed first: what is still queued does not run.
  QObject context_;
};

/// The names of the keys that choose the item, such as Control and Q: Command is Control on this
/// desktop. Empty for none.
QStringList shortcutOf(const MenuItem& item);

}  // namespace zephlin
