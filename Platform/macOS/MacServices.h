#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include "Platform/Dispatch.h"
#include "Platform/Services.h"
#include "Platform/Workspace.h"

namespace zephlin {

/// Core Foundation's absolute time, which is wall time since 2001.
class MacClock final : public Clock {
 public:
  [[nodiscard]] WallTime now() const override;
};

class MacWorkspace final : public Workspace {
 public:
  std::unique_ptr<Observation> observeDidWake(std::function<void()> callback) override;
};

class MacSystemLog final : public SystemLog {
 public:
  void log(const std::string& text) override;
};

/// NSUserDefaults' standard defaults, in the domain of the bundle identifier.
class MacUserDefaults final : public UserDefaults {
 public:
  [[nodiscard]] std::optional<bool> boolean(const std::string& key) const override;
  [[nodiscard]] bool boolForKey(const std::string& key) const override;
  void setBoolean(const std::string& key, bool value) override;
  void setDouble(const std::string& key, double value) override;
};

/// An NSError as it is: what() is its localized description.
class NativeError final : public std::runtime_error {
 public:
  NativeError(const std::string& localizedDescription, std::string errorDomain, long errorCode)
      : std::runtime_error(localizedDescription), domain(std::move(errorDomain)), code(errorCode) {}

  std::string domain;
  long code;
};

/// The main application's service of SMAppService.
class MacLoginService final : public LoginService {
 public:
  void registerMainApp() override;
  void unregisterMainApp() override;
  [[nodiscard]] LoginServiceStatus status() const override;
  void openSystemSettingsLoginItems() override;
};

}  // namespace zephlin
