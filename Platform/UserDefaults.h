#pragma once

#include <optional>
#include <string>

namespace zephlin {

/// The user's stored settings of this application. Values are typed: what was stored as text is
/// never taken for a Boolean. Main thread. Storing does not fail visibly: what cannot be kept is
/// logged by the platform.
class UserDefaults {
 public:
  virtual ~UserDefaults() = default;
  /// Absent where nothing is stored under the key, or something that is no Boolean.
  [[nodiscard]] virtual std::optional<bool> boolean(const std::string& key) const = 0;
  /// What is stored as a truth: false where nothing is, true for a Boolean that is, and for a
  /// number other than 0. Whether a text counts is the platform's affair.
  [[nodiscard]] virtual bool boolForKey(const std::string& key) const = 0;
  virtual void setBoolean(const std::string& key, bool value) = 0;
  virtual void setDouble(const std::string& key, double value) = 0;
};

}  // namespace zephlin
