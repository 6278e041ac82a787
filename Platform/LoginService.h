#pragma once

namespace zephlin {

/// With the values of SMAppService.Status.
enum class LoginServiceStatus {
  NotRegistered = 0,
  Enabled = 1,
  RequiresApproval = 2,
  NotFound = 3
};

/// Whether the desktop starts this application at login. Main thread.
class LoginService {
 public:
  virtual ~LoginService() = default;
  /// Throws the platform's own error, a std::exception whose what() is its localized description.
  virtual void registerMainApp() = 0;
  /// As registerMainApp.
  virtual void unregisterMainApp() = 0;
  /// Asked of the desktop each time.
  [[nodiscard]] virtual LoginServiceStatus status() const = 0;
  /// Opens the desktop's settings of what starts at login.
  virtual void openSystemSettingsLoginItems() = 0;
};

}  // namespace zephlin
