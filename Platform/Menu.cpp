#include "Platform/Menu.h"

namespace zephlin {

bool performAction(const MenuAction& action) {
  // A copy, since what is done may rebuild the menu that holds the action.
  const MenuAction performed = action;
  if (const auto* const own = std::get_if<std::function<void()>>(&performed)) {
    (*own)();
    return true;
  }
  if (const auto* const updater = std::get_if<std::weak_ptr<Updater>>(&performed)) {
    if (const auto live = updater->lock()) {
      live->checkForUpdates();
    }
    return true;
  }
  return false;
}

std::shared_ptr<MenuItem> MenuItem::separator() {
  auto item = std::make_shared<MenuItem>("", std::monostate());
  item->isSeparator = true;
  return item;
}

std::shared_ptr<MenuItem> Menu::add(std::shared_ptr<MenuItem> item) {
  items_.push_back(item);
  return item;
}

}  // namespace zephlin
