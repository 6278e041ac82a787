// AppDelegate, the status item: its menu, and what the menu's entries do.

#include <utility>

#include "Zephlin/About.h"
#include "Zephlin/AppDelegate.h"
#include "Zephlin/LoginItem.h"

namespace zephlin {

namespace {

struct Appearance {
  const char* symbol;
  const char* toolTip;
};

constexpr Appearance disabledAppearance{"capslock", "Zephlin: disabled (Apple default delay)"};
constexpr Appearance failedAppearance{
    "exclamationmark.triangle",
    "Zephlin: enabled, but the fix could not be applied. Check Input Monitoring permission."};
constexpr Appearance instantAppearance{"capslock.fill", "Zephlin: instant Caps Lock is ON"};

Appearance appearanceFor(bool isEnabled, bool lastApplyFailed) {
  if (!isEnabled) {
    return disabledAppearance;
  }
  return lastApplyFailed ? failedAppearance : instantAppearance;
}

std::shared_ptr<MenuItem> makeText(std::string title) {
  auto item = std::make_shared<MenuItem>(std::move(title), std::monostate());
  item->isEnabled = false;
  return item;
}

}  // namespace

void AppDelegate::setUpStatusItem() {
  statusItem_ = platform_.systemStatusBar().makeStatusItem();
  refreshUI();
  auto menu = std::make_shared<Menu>();
  menu->autoenablesItems = false;
  menu->delegate = weak_from_this();
  statusItem_->setMenu(menu);
}

void AppDelegate::refreshUI() {
  if (!statusItem_ || !statusItem_->hasButton()) {
    return;
  }
  const Appearance appearance = appearanceFor(isEnabled(), lastApplyFailed_);
  auto image = platform_.systemStatusBar().systemSymbol(appearance.symbol, "Zephlin");
  if (image) {
    image->isTemplate = true;
  }
  statusItem_->setButtonImage(image);
  statusItem_->setButtonToolTip(appearance.toolTip);
  if (const auto item = statusLineItem_.lock()) {
    item->title = statusDescription();
    statusItem_->menuTitlesDidChange();
  }
}

void AppDelegate::menuNeedsUpdate(Menu& menu) {
  menu.removeAllItems();
  menu.add(makeText(productTitle));
  statusLineItem_ = menu.add(makeText(statusDescription()));
  menu.add(MenuItem::separator());
  const auto add = [this, &menu](const char* title, void (AppDelegate::*action)(),
                                 const char* keyEquivalent = "") {
    return menu.add(std::make_shared<MenuItem>(title, weakAction(action), keyEquivalent));
  };
  add(instantCapsLockTitle, &AppDelegate::toggleEnabled)->isChecked = isEnabled();
  const auto startAtLogin = add("Start at Login", &AppDelegate::toggleLoginItem);
  startAtLogin->isChecked = LoginItem::isEnabled(platform_);
  startAtLogin->isEnabled = LoginItem::runsFromApplicationBundle(platform_);
  add("Re-apply Now", &AppDelegate::reapplyNow)->isEnabled = isEnabled();
  menu.add(MenuItem::separator());
  add("Tap Test…", &AppDelegate::showTapTest);
  menu.add(std::make_shared<MenuItem>("Check for Updates…", std::weak_ptr(updaterController_)));
  add("About Zephlin", &AppDelegate::showAbout);
  add("Quit Zephlin", &AppDelegate::quit, "q");
  refreshStatusAsync({});
}

MenuAction AppDelegate::weakAction(void (AppDelegate::*action)()) {
  return [weak = weak_from_this(), action] {
    if (const auto self = weak.lock()) {
      ((*self).*action)();
    }
  };
}

void AppDelegate::toggleEnabled() {
  setEnabled(!isEnabled());
}

void AppDelegate::toggleLoginItem() {
  try {
    LoginItem::setEnabled(platform_, !LoginItem::isEnabled(platform_));
  } catch (const std::exception& error) {
    platform_.systemLog()->log("Zephlin: login item change failed: " + localizedDescription(error));
  }
  if (LoginItem::needsApproval(platform_)) {
    platform_.loginService().openSystemSettingsLoginItems();
  }
}

void AppDelegate::reapplyNow() {
  applyIfEnabled(false);
}

TapTestController& AppDelegate::tapTest() {
  if (!tapTest_) {
    tapTest_ = std::make_shared<TapTestController>(platform_);
  }
  return *tapTest_;
}

void AppDelegate::showTapTest() {
  tapTest().show();
}

void AppDelegate::showAbout() {
  runAboutAlert(platform_);
}

void AppDelegate::quit() {
  platform_.application().terminate();
}

}  // namespace zephlin
