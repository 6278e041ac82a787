#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "Platform/Application.h"
#include "Platform/Dispatch.h"
#include "Platform/Services.h"
#include "Platform/Simulated/ObserverList.h"
#include "Platform/Simulated/VirtualLoop.h"
#include "Platform/Workspace.h"

namespace zephlin {

/// Wall time: it passes with monotonic time and can be moved without it. At first it is
/// 1 January 2024.
class SimulatedClock final : public Clock {
 public:
  explicit SimulatedClock(const VirtualLoop& loop) : loop_(loop) {}

  [[nodiscard]] WallTime now() const override;

  void setWallTime(WallTime time);
  /// Negative seconds move it back.
  void jump(double seconds) { offset_ += ticksFromSeconds(seconds); }

 private:
  const VirtualLoop& loop_;
  VirtualTicks offset_ = 1'704'067'200 * virtualTicksPerSecond;
};

class SimulatedWorkspace final : public Workspace {
 public:
  explicit SimulatedWorkspace(std::shared_ptr<MainQueue> mainQueue)
      : mainQueue_(std::move(mainQueue)) {}

  std::unique_ptr<Observation> observeDidWake(std::function<void()> callback) override;

  /// Tells the observers through the main queue.
  void announceDidWake();
  [[nodiscard]] std::size_t wakeObservers() const { return didWake_.count(); }

 private:
  std::shared_ptr<MainQueue> mainQueue_;
  ObserverList<> didWake_;
};

class SimulatedProcessInfo final : public ProcessInfo {
 public:
  [[nodiscard]] std::optional<std::string> environmentVariable(
      const std::string& name) const override;
  [[nodiscard]] std::string mainBundlePath() const override { return bundlePath; }

  std::map<std::string, std::string> environment;
  std::string bundlePath = "/Applications/Zephlin.app";
};

class SimulatedSystemLog final : public SystemLog {
 public:
  void log(const std::string& text) override { entries_.push_back(text); }

  [[nodiscard]] const std::vector<std::string>& entries() const { return entries_; }
  void clear() { entries_.clear(); }

 private:
  std::vector<std::string> entries_;
};

/// What is stored. It outlives a desktop if the same object is given to the next one.
struct SimulatedUserDefaultsStorage {
  using Value = std::variant<bool, double, std::string>;

  std::map<std::string, Value> values;
  std::size_t writes = 0;

  [[nodiscard]] std::optional<Value> value(const std::string& key) const;
  [[nodiscard]] std::optional<bool> boolean(const std::string& key) const;
  [[nodiscard]] std::optional<double> number(const std::string& key) const;
  [[nodiscard]] bool contains(const std::string& key) const { return values.contains(key); }
  void set(const std::string& key, Value value) { values[key] = std::move(value); }
  void remove(const std::string& key) { values.erase(key); }
};

class SimulatedUserDefaults final : public UserDefaults {
 public:
  explicit SimulatedUserDefaults(std::shared_ptr<SimulatedUserDefaultsStorage> storage)
      : storage_(std::move(storage)) {}

  [[nodiscard]] std::optional<bool> boolean(const std::string& key) const override;
  [[nodiscard]] bool boolForKey(const std::string& key) const override;
  void setBoolean(const std::string& key, bool value) override;
  void setDouble(const std::string& key, double value) override;

  SimulatedUserDefaultsStorage& storage() { return *storage_; }

 private:
  std::shared_ptr<SimulatedUserDefaultsStorage> storage_;
};

class SimulatedLoginService final : public LoginService {
 public:
  void registerMainApp() override;
  void unregisterMainApp() override;
  [[nodiscard]] LoginServiceStatus status() const override { return status_; }
  void openSystemSettingsLoginItems() override { ++settingsOpenings_; }

  void setStatus(LoginServiceStatus status) { status_ = status; }
  /// Registering leads to RequiresApproval in place of Enabled, also if it fails.
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

/// The updaters that were made, and what they were asked for.
class SimulatedUpdaters {
 public:
  std::unique_ptr<Updater> makeStarted();

  [[nodiscard]] std::size_t started() const { return counts_->started; }
  [[nodiscard]] std::size_t live() const { return counts_->live; }
  [[nodiscard]] std::size_t checks() const { return counts_->checks; }

  struct Counts {
    std::size_t started = 0;
    std::size_t live = 0;
    std::size_t checks = 0;
  };

 private:
  std::shared_ptr<Counts> counts_ = std::make_shared<Counts>();
};

}  // namespace zephlin
