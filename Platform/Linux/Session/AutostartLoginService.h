#pragma once

#include <string>

#include "Platform/Services.h"

namespace zephlin {

/// Has the application started at login, in every desktop, by an entry in the user's autostart
/// folder (Desktop Application Autostart, freedesktop.org).
///
/// An entry that the user, or the desktop for them, has switched off is registered and awaits
/// approval: registering again updates it and leaves it off, and the desktop's settings can switch
/// it on again. Whatever else the user wrote into it is kept.
class AutostartLoginService final : public LoginService {
 public:
  /// Starts the program at this absolute path. The log outlives the service.
  AutostartLoginService(std::string executablePath, SystemLog& log);

  void registerMainApp() override;
  /// Removes the entry; if a system-wide one would take its place, hides that.
  void unregisterMainApp() override;
  [[nodiscard]] LoginServiceStatus status() const override;
  void openSystemSettingsLoginItems() override;

 private:
  std::string executablePath_;
  SystemLog& log_;
};

}  // namespace zephlin
