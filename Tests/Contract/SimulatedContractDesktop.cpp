#include <algorithm>
#include <cctype>

#include "Platform/Simulated/SimulatedDesktop.h"
#include "Tests/Contract/ContractDesktop.h"
#include "Tests/Contract/SimulatedShownWindow.h"

namespace zephlin::contract {
namespace {

std::string keyEquivalentOf(const MenuItem& item) {
  if (item.keyEquivalent.empty()) {
    return "";
  }
  const auto held = [&item](ModifierFlags modifier) {
    return (item.keyEquivalentModifierMask & modifier) != 0;
  };
  return std::string(held(modifierCommand) ? "Command-" : "") +
         (held(modifierShift) ? "Shift-" : "") +
         static_cast<char>(std::toupper(static_cast<unsigned char>(item.keyEquivalent.front())));
}

class SimulatedContractDesktop final : public ContractDesktop {
 public:
  Platform& platform() override { return *desktop_; }
  void restartPlatform() override {
    desktop_.reset();
    desktop_ = std::make_unique<SimulatedDesktop>(storage_);
  }

  bool runUntil(const std::function<bool()>& condition) override {
    const double end = desktop_->now() + virtualTimeout;
    while (!condition()) {
      if (desktop_->now() > end || !desktop_->step()) {
        return condition();
      }
    }
    return true;
  }
  void runFor(double seconds) override { desktop_->runFor(seconds); }
  double monotonicSeconds() override { return desktop_->now(); }
  void letTimePass(double seconds) override {
    desktop_->loop().blockFor(ticksFromSeconds(seconds));
  }

  void plugKeyboard() override { desktop_->plugKeyboard(); }
  void sleepAndWake() override { desktop_->sleepAndWake(3600); }
  void pressCapsLock() override { desktop_->pressCapsLock(); }
  void releaseCapsLock() override { desktop_->releaseCapsLock(); }

  bool openMenu() override { return desktop_->openMenu(); }
  std::vector<ShownMenuItem> menuItems() override;
  bool chooseMenuItem(const std::string& title) override { return desktop_->click(title); }
  void closeMenu() override { desktop_->closeMenu(); }
  std::string statusToolTip() override { return desktop_->systemStatusBar().item().toolTip; }
  bool isStatusImageShown() override {
    return desktop_->systemStatusBar().item().image.has_value();
  }

  std::vector<ShownAlert> alerts() override;
  void dismissAlert() override { desktop_->dismissAlert(); }
  bool isWindowShown() override;
  std::vector<std::string> windowTexts() override { return window()->labelTexts(); }
  bool pressButton(const std::string& title) override { return window()->pressButton(title); }
  void closeWindow() override { window()->close(); }
  ShownWindow shownWindow(const std::string& title) override;
  void setDark(bool /*isDark*/) override {}

  void storeTextInDefaults(const std::string& key, const std::string& text) override {
    storage_->set(key, text);
  }
  void spoilDefaults() override { storage_->values.clear(); }
  void switchLoginItemOff() override {
    desktop_->loginService().setNeedsApproval(true);
    desktop_->loginService().setStatus(LoginServiceStatus::RequiresApproval);
  }
  void makeLoginItemsFail() override { desktop_->loginService().failWith("not permitted"); }

 private:
  static constexpr double virtualTimeout = 86'400;

  std::shared_ptr<SimulatedWindow> window() { return desktop_->windows().window(); }

  std::shared_ptr<SimulatedUserDefaultsStorage> storage_ =
      std::make_shared<SimulatedUserDefaultsStorage>();
  std::unique_ptr<SimulatedDesktop> desktop_ = std::make_unique<SimulatedDesktop>(storage_);
};

std::vector<ShownMenuItem> SimulatedContractDesktop::menuItems() {
  std::vector<ShownMenuItem> shown;
  for (const auto& item : desktop_->systemStatusBar().menuItems()) {
    shown.push_back({item->title, item->isSeparator, item->isEnabled,
                     static_cast<bool>(item->isChecked), keyEquivalentOf(*item)});
  }
  return shown;
}

ShownWindow SimulatedContractDesktop::shownWindow(const std::string& title) {
  for (const auto& window : desktop_->windows().windows()) {
    if (window->isShown && window->description.title == title) {
      return laidOut(*window);
    }
  }
  return {};
}

std::vector<ShownAlert> SimulatedContractDesktop::alerts() {
  if (!desktop_->alerts().isModal()) {
    return {};
  }
  const Alert& alert = desktop_->alerts().shown().back();
  return {{alert.messageText, alert.buttons}};
}

bool SimulatedContractDesktop::isWindowShown() {
  const auto windows = desktop_->windows().windows();
  return std::any_of(windows.begin(), windows.end(),
                     [](const auto& window) { return window->isShown; });
}

}  // namespace

std::unique_ptr<ContractDesktop> makeContractDesktop() {
  return std::make_unique<SimulatedContractDesktop>();
}

}  // namespace zephlin::contract
