#pragma once

#include "Platform/Services.h"

namespace zephlin {

/// The main application's service of SMAppService.
class MacLoginService final : public LoginService {
 public:
  void registerMainApp() override;
  void unregisterMainApp() override;
  [[nodiscard]] LoginServiceStatus status() const override;
  void openSystemSettingsLoginItems() override;
};

}  // namespace zephlin
