#pragma once

#include <QMenu>
#include <QObject>
#include <functional>
#include <memory>

#include "Platform/Menu.h"

namespace zephlin {

/// Shows the items of a Menu in a QMenu, which is filled at all times: a panel that draws the menu
/// itself may read it before it announces that it opens it, and Qt 6.4 never makes it read again.
///
/// update() asks the menu's delegate for its items whenever the QMenu is about to be shown, and
/// after each chosen action unless the application is terminating by then. Unchanged entries are
/// left alone, and an entry that stays in its place keeps its QAction, so that an open menu changes
/// while the user looks at it, the panel is sent single properties, and a choice that is under way
/// finds its entry. Main thread.
class QtMenuTranslation {
 public:
  QtMenuTranslation(std::shared_ptr<Menu> menu, std::function<bool()> isTerminating);
  QtMenuTranslation(const QtMenuTranslation&) = delete;
  QtMenuTranslation& operator=(const QtMenuTranslation&) = delete;
  ~QtMenuTranslation() = default;

  /// Lives as long as the translation. Actions run when control is back in the event loop.
  [[nodiscard]] QMenu& qtMenu() { return qtMenu_; }

  /// Asks the delegate for the items and shows them.
  void update();
  /// Gives the entries the titles that the items have now.
  void showTitles();

 private:
  void showItems();
  void show(const std::shared_ptr<MenuItem>& item, std::size_t index);
  QAction& actionAt(std::size_t index, const MenuItem& item);
  void perform(const MenuAction& action);

  std::shared_ptr<Menu> menu_;
  std::function<bool()> isTerminating_;
  QMenu qtMenu_;
  // Destroyed first: what is still queued does not run.
  QObject context_;
};

}  // namespace zephlin
