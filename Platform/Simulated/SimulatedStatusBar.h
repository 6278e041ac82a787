#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "Platform/Simulated/SimulatedApplication.h"
#include "Platform/Simulated/SimulatedInput.h"
#include "Platform/StatusBar.h"

namespace zephlin {

/// What a status item shows.
struct SimulatedStatusItemState {
  bool hasButton = true;
  std::optional<SymbolImage> image;
  std::string toolTip;
  std::shared_ptr<Menu> menu;
  /// How often the image was set.
  std::size_t imageSettings = 0;
  /// How often the item was asked to show the menu's titles.
  std::size_t menuTitleChanges = 0;
};

/// The bar, and a user who opens the newest item's menu.
class SimulatedStatusBar final : public StatusBar {
 public:
  SimulatedStatusBar(SimulatedApplication& application, SimulatedTracking& tracking)
      : application_(application), tracking_(tracking) {}

  std::unique_ptr<StatusItem> makeStatusItem() override;
  std::optional<SymbolImage> systemSymbol(const std::string& name,
                                          const std::string& accessibilityDescription) override;

  /// Whether items made from now on have a button.
  void setButtonsAvailable(bool available) { buttonsAvailable_ = available; }
  /// From now on there is no such symbol.
  void removeSymbol(const std::string& name) { missingSymbols_.insert(name); }

  /// The items that are shown, in the order in which they were made.
  [[nodiscard]] std::vector<std::shared_ptr<const SimulatedStatusItemState>> items() const;
  /// The newest item; std::logic_error if there is none.
  [[nodiscard]] const SimulatedStatusItemState& item() const;

  /// Asks the menu's delegate for the items and opens it. False if there is no item or menu, or
  /// a menu is open already or an alert is modal.
  bool openMenu();
  /// Leaves without a choice.
  void closeMenu() { tracking_.menuIsOpen = false; }
  [[nodiscard]] bool isMenuOpen() const { return tracking_.menuIsOpen; }
  /// Chooses the entry of the open menu that has this title: closes the menu, then performs the
  /// action. False, with the menu still open, if the entry is missing or not enabled.
  bool click(const std::string& title);
  /// The items of the newest item's menu, open or not; empty if there is none.
  [[nodiscard]] std::vector<std::shared_ptr<MenuItem>> menuItems() const;
  /// The entry with this title, or null.
  [[nodiscard]] std::shared_ptr<MenuItem> menuItem(const std::string& title) const;
  /// The title of the second entry; empty if there is none.
  [[nodiscard]] std::string statusLine() const;

 private:
  SimulatedApplication& application_;
  SimulatedTracking& tracking_;
  bool buttonsAvailable_ = true;
  std::set<std::string> missingSymbols_;
  std::vector<std::weak_ptr<const SimulatedStatusItemState>> items_;
};

}  // namespace zephlin
