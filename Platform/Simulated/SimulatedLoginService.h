#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>

#include "Platform/Services.h"

namespace zephlin {

class SimulatedLoginService final : public LoginService {
 public:
  void registerMainApp() override;
  void unregisterMainApp() override;
  [[nodiscard]] LoginServiceStatus status() const override { return status_; }
  void openSystemSettingsLoginItems() override { ++settingsOpenings_; }

  void setStatus(LoginServiceStatus status) { status_ = status; }
  /// Registering leads to RequiresApproval in place of Enabled, also where it fails.
  void setNeedsApproval(bool needsApproval) { needsApproval_ = needsApproval; }
  /// Registering and unregistering throw a std::runtime_error with this text, or work again.
  void failWith(std::optional<std::string> text) { failure_ = std::move(text); }

  [[nodiscard]] std::size_t registrations() const { return registrations_; }
  [[nodiscard]] std::size_t unregistrations() const { return unregistrations_; }
  [[nodiscard]] std::size_t settingsOpenings() const { return settingsOpenings_; }

 private:
  void throwIfFailing() const;

  LoginServiceStatus status_ = LoginServiceStatus::NotRegistered;
  bool needsApproval_ = false;
  std::optional<std::string> failure_;
  std::size_t registrations_ = 0;
  std::size_t unregistrations_ = 0;
  std::size_t settingsOpenings_ = 0;
};

}  // namespace zephlin
