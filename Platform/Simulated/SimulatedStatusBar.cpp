#include "Platform/Simulated/SimulatedStatusBar.h"

#include <algorithm>
#include <stdexcept>

namespace zephlin {

namespace {

class SimulatedStatusItem final : public StatusItem {
 public:
  explicit SimulatedStatusItem(std::shared_ptr<SimulatedStatusItemState> state)
      : state_(std::move(state)) {}

  [[nodiscard]] bool hasButton() const override { return state_->hasButton; }
  void setButtonImage(const std::optional<SymbolImage>& image) override {
    if (state_->hasButton) {
      state_->image = image;
      ++state_->imageSettings;
    }
  }
  void setButtonToolTip(const std::string& text) override {
    if (state_->hasButton) {
      state_->toolTip = text;
    }
  }
  void setMenu(std::shared_ptr<Menu> menu) override { state_->menu = std::move(menu); }
  void menuTitlesDidChange() override { ++state_->menuTitleChanges; }

 private:
  std::shared_ptr<SimulatedStatusItemState> state_;
};

}  // namespace

std::unique_ptr<StatusItem> SimulatedStatusBar::makeStatusItem() {
  auto state = std::make_shared<SimulatedStatusItemState>();
  state->hasButton = buttonsAvailable_;
  std::erase_if(items_, [](const auto& item) { return item.expired(); });
  items_.push_back(state);
  return std::make_unique<SimulatedStatusItem>(std::move(state));
}

std::optional<SymbolImage> SimulatedStatusBar::systemSymbol(
    const std::string& name, const std::string& accessibilityDescription) {
  if (missingSymbols_.contains(name)) {
    return std::nullopt;
  }
  return SymbolImage{name, accessibilityDescription, false};
}

std::vector<std::shared_ptr<const SimulatedStatusItemState>> SimulatedStatusBar::items() const {
  std::vector<std::shared_ptr<const SimulatedStatusItemState>> live;
  for (const auto& weak : items_) {
    if (auto item = weak.lock()) {
      live.push_back(std::move(item));
    }
  }
  return live;
}

const SimulatedStatusItemState& SimulatedStatusBar::item() const {
  const auto live = items();
  if (live.empty()) {
    throw std::logic_error("no status item is shown");
  }
  return *live.back();
}

bool SimulatedStatusBar::openMenu() {
  const auto live = items();
  if (live.empty() || !live.back()->menu || tracking_.holdsInputBack()) {
    return false;
  }
  const std::shared_ptr<Menu> menu = live.back()->menu;
  if (const auto delegate = menu->delegate.lock()) {
    delegate->menuNeedsUpdate(*menu);
  }
  tracking_.menuIsOpen = true;
  return true;
}

bool SimulatedStatusBar::click(const std::string& title) {
  const std::shared_ptr<MenuItem> chosen = menuItem(title);
  if (!tracking_.menuIsOpen || !chosen || !chosen->isEnabled || chosen->isSeparator) {
    return false;
  }
  closeMenu();
  application_.perform(chosen->action);
  return true;
}

std::vector<std::shared_ptr<MenuItem>> SimulatedStatusBar::menuItems() const {
  const auto live = items();
  if (live.empty() || !live.back()->menu) {
    return {};
  }
  return live.back()->menu->items();
}

std::shared_ptr<MenuItem> SimulatedStatusBar::menuItem(const std::string& title) const {
  const auto all = menuItems();
  const auto found = std::find_if(all.begin(), all.end(),
                                  [&title](const auto& item) { return item->title == title; });
  return found == all.end() ? nullptr : *found;
}

std::string SimulatedStatusBar::statusLine() const {
  const auto all = menuItems();
  return all.size() < 2 ? std::string() : all[1]->title;
}

}  // namespace zephlin
