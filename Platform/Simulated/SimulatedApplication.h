#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Platform/Application.h"
#include "Platform/Simulated/VirtualLoop.h"

namespace zephlin {

class SimulatedApplication final : public Application {
 public:
  explicit SimulatedApplication(VirtualLoop& loop) : loop_(loop) {}

  void setDelegate(std::weak_ptr<ApplicationDelegate> delegate) override;
  void becomeAccessory() override { isAccessory_ = true; }
  void setMainMenu(std::shared_ptr<Menu> menu) override { mainMenu_ = std::move(menu); }
  bool handOverToRunningInstance() override { return anotherInstanceRuns; }
  void activateIgnoringOtherApps() override { ++activations_; }
  /// Launches, then pumps the loop until the application has terminated or no event is left.
  void run() override;
  /// Is recorded and ends `run`; returns.
  void terminate() override { hasTerminated_ = true; }

  /// Tells the delegate through the main queue that launching has finished, and works off what is
  /// due.
  void launch();

  /// Performs the item of the main menu that has this key equivalent and is enabled, and returns
  /// its title. Absent if there is none.
  std::optional<std::string> pressKeyEquivalent(const std::string& key,
                                                ModifierFlags flags = modifierCommand);
  /// Terminates, or records the action.
  void perform(const MenuAction& action);

  /// Whether this process is a second start.
  bool anotherInstanceRuns = false;
  /// As if the user had started the application once more.
  void reopen();

  [[nodiscard]] std::shared_ptr<ApplicationDelegate> delegate() const { return delegate_.lock(); }
  [[nodiscard]] bool isAccessory() const { return isAccessory_; }
  [[nodiscard]] const std::shared_ptr<Menu>& mainMenu() const { return mainMenu_; }
  [[nodiscard]] std::size_t activations() const { return activations_; }
  [[nodiscard]] bool hasTerminated() const { return hasTerminated_; }
  /// All but Terminate.
  [[nodiscard]] const std::vector<ResponderAction>& responderActions() const {
    return responderActions_;
  }

 private:
  void postLaunch();

  VirtualLoop& loop_;
  std::weak_ptr<ApplicationDelegate> delegate_;
  std::shared_ptr<Menu> mainMenu_;
  std::size_t activations_ = 0;
  bool isAccessory_ = false;
  bool hasTerminated_ = false;
  std::vector<ResponderAction> responderActions_;
};

}  // namespace zephlin
