#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Platform/Platform.h"
#include "Tests/Contract/ShownWindow.h"

namespace zephlin::contract {

/// An entry of the open menu, as the user sees it.
struct ShownMenuItem {
  std::string title;
  bool isSeparator = false;
  bool isEnabled = true;
  bool isChecked = false;
  /// Modifiers and key, such as "Command-Q"; Command is Control on a desktop without it.
  std::string keyEquivalent{};

  bool operator==(const ShownMenuItem&) const = default;
};

/// A modal alert, as the user sees it.
struct ShownAlert {
  std::string messageText;
  std::vector<std::string> buttons;

  bool operator==(const ShownAlert&) const = default;
};

/// The title of the one window that a test opens.
constexpr const char* windowTitle = "Contract";

/// A desktop with one user, whose platform keeps the contracts of Platform/*.h, and what happens on
/// it. All on the main thread, except `letTimePass`. What is done to the desktop may reach the
/// platform later, in its event loop.
class ContractDesktop {
 public:
  virtual ~ContractDesktop() = default;

  virtual Platform& platform() = 0;
  /// Ends the platform and makes another one for the same user.
  virtual void restartPlatform() = 0;

  /// Handles events until the condition holds; false if it never does. Also from within an event.
  [[nodiscard]] virtual bool runUntil(const std::function<bool()>& condition) = 0;
  /// Handles events for this long.
  virtual void runFor(double seconds) = 0;
  /// The time by which delays and intervals are measured.
  [[nodiscard]] virtual double monotonicSeconds() = 0;
  /// Blocks a serial queue's work for this long.
  virtual void letTimePass(double seconds) = 0;

  // What happens to the machine.
  virtual void plugKeyboard() = 0;
  virtual void sleepAndWake() = 0;

  // The Caps Lock key. It registers each press.
  virtual void pressCapsLock() = 0;
  virtual void releaseCapsLock() = 0;

  // The status item's host. Opening asks for the items; choosing closes.
  virtual bool openMenu() = 0;
  virtual std::vector<ShownMenuItem> menuItems() = 0;
  virtual bool chooseMenuItem(const std::string& title) = 0;
  virtual void closeMenu() = 0;
  /// Empty if nothing is shown.
  virtual std::string statusToolTip() = 0;
  virtual bool isStatusImageShown() = 0;

  // What the user sees and does in windows.
  virtual std::vector<ShownAlert> alerts() = 0;
  /// Presses the first button of the alert.
  virtual void dismissAlert() = 0;
  virtual bool isWindowShown() = 0;
  virtual std::vector<std::string> windowTexts() = 0;
  virtual bool pressButton(const std::string& title) = 0;
  virtual void closeWindow() = 0;
  /// The visible window with this title; has no views if there is no such window.
  virtual ShownWindow shownWindow(const std::string& title) = 0;
  /// Whether `shownWindow` can see that digits have one width.
  [[nodiscard]] virtual bool tellsDigitWidths() const { return true; }
  /// The user makes the desktop dark, or light.
  virtual void setDark(bool isDark) = 0;

  // The user's settings.
  /// Puts a text where a Boolean is expected.
  virtual void storeTextInDefaults(const std::string& key, const std::string& text) = 0;
  /// All that is stored is lost, or can no longer be read.
  virtual void spoilDefaults() = 0;
  /// The user switches the login item off in the desktop's settings.
  virtual void switchLoginItemOff() = 0;
  virtual void makeLoginItemsFail() = 0;
};

/// The desktop that the program is linked with.
std::unique_ptr<ContractDesktop> makeContractDesktop();

}  // namespace zephlin::contract
