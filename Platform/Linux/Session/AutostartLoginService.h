#pragma once

#include <string>

#include "Platform/Linux/Session/AutostartEntry.h"
#include "Platform/LoginService.h"
#include "Platform/SystemLog.h"

namespace zephlin {

/// Has the application started at login by an entry of its own in the user's autostart folder
/// (Desktop Application Autostart, freedesktop.org), in every desktop.
///
/// The entry that the user, or the desktop for him, has switched off is registered and awaits
/// approval: registering once more brings it up to date and leaves it off, and the desktop's
/// settings are where it is switched on again. What else he wrote into it is kept.
class AutostartLoginService final : public LoginService {
 public:
  /// What is to be started: an absolute path. The log outlives the service.
  AutostartLoginService(std::string executablePath, SystemLog& log);

  void registerMainApp() override;
  /// Removes the entry; where a system-wide one would take its place, hides that.
  void unregisterMainApp() override;
  [[nodiscard]] LoginServiceStatus status() const override;
  void openSystemSettingsLoginItems() override;

 private:
  std::string executablePath_;
  SystemLog& log_;
};

}  // namespace zephlin
