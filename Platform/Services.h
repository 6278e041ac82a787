#pragma once

#include <optional>
#include <string>

namespace zephlin {

class SystemLog {
 public:
  virtual ~SystemLog() = default;
  /// Writes one entry. Any thread; never throws.
  virtual void log(const std::string& text) = 0;
};

/// The user's stored settings of this application. Values are typed: a stored text is never read as
/// a Boolean. A setting that cannot be stored is logged by the platform, not reported here. Main
/// thread.
class UserDefaults {
 public:
  virtual ~UserDefaults() = default;
  /// Absent if nothing is stored under the key, or not a Boolean.
  [[nodiscard]] virtual std::optional<bool> boolean(const std::string& key) const = 0;
  /// False if nothing is stored; true for a stored true and for a number other than 0. Whether a
  /// text counts depends on the platform.
  [[nodiscard]] virtual bool boolForKey(const std::string& key) const = 0;
  virtual void setBoolean(const std::string& key, bool value) = 0;
  virtual void setDouble(const std::string& key, double value) = 0;
};

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
  /// Throws as registerMainApp does.
  virtual void unregisterMainApp() = 0;
  /// Asks the desktop each time.
  [[nodiscard]] virtual LoginServiceStatus status() const = 0;
  /// Opens the desktop's settings of what starts at login.
  virtual void openSystemSettingsLoginItems() = 0;
};

/// Looks for newer versions and shows the user what it finds. Main thread.
class Updater {
 public:
  virtual ~Updater() = default;
  virtual void checkForUpdates() = 0;
};

}  // namespace zephlin
