#include "Platform/Menu.h"

namespace zephlin {

std::shared_ptr<MenuItem> MenuItem::separator() {
  auto item = std::make_shared<MenuItem>("", std::monostate());
  item->isSeparator = true;
  return item;
}

void MenuItem::setTitle(std::string title) {
  title_ = std::move(title);
  if (titleDidChange) {
    titleDidChange();
  }
}

std::shared_ptr<MenuItem> Menu::add(std::shared_ptr<MenuItem> item) {
  items_.push_back(item);
  return item;
}

}  // namespace zephlin
