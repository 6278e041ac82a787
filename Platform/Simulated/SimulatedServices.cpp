#include "Platform/Simulated/SimulatedServices.h"

#include <stdexcept>

namespace zephlin {

WallTime SimulatedClock::now() const {
  return WallTime(Seconds(secondsFromTicks(loop_.now() + offset_)));
}

void SimulatedClock::setWallTime(WallTime time) {
  offset_ = ticksFromSeconds(time.time_since_epoch().count()) - loop_.now();
}

std::unique_ptr<Observation> SimulatedWorkspace::observeDidWake(std::function<void()> callback) {
  return didWake_.add(std::move(callback));
}

void SimulatedWorkspace::announceDidWake() {
  mainQueue_->post(didWake_.notification());
}

std::optional<std::string> SimulatedProcessInfo::environmentVariable(
    const std::string& name) const {
  const auto found = environment.find(name);
  return found == environment.end() ? std::nullopt : std::optional(found->second);
}

std::optional<SimulatedUserDefaultsStorage::Value> SimulatedUserDefaultsStorage::value(
    const std::string& key) const {
  const auto found = values.find(key);
  return found == values.end() ? std::nullopt : std::optional(found->second);
}

std::optional<bool> SimulatedUserDefaultsStorage::boolean(const std::string& key) const {
  const auto found = values.find(key);
  const bool* const stored = found == values.end() ? nullptr : std::get_if<bool>(&found->second);
  return stored == nullptr ? std::nullopt : std::optional(*stored);
}

std::optional<double> SimulatedUserDefaultsStorage::number(const std::string& key) const {
  const auto found = values.find(key);
  const double* const stored =
      found == values.end() ? nullptr : std::get_if<double>(&found->second);
  return stored == nullptr ? std::nullopt : std::optional(*stored);
}

std::optional<bool> SimulatedUserDefaults::boolean(const std::string& key) const {
  return storage_->boolean(key);
}

bool SimulatedUserDefaults::boolForKey(const std::string& key) const {
  return storage_->boolean(key).value_or(storage_->number(key).value_or(0) != 0);
}

void SimulatedUserDefaults::setBoolean(const std::string& key, bool value) {
  storage_->set(key, value);
  ++storage_->writes;
}

void SimulatedUserDefaults::setDouble(const std::string& key, double value) {
  storage_->set(key, value);
  ++storage_->writes;
}

void SimulatedLoginService::registerMainApp() {
  ++registrations_;
  if (needsApproval_) {
    status_ = LoginServiceStatus::RequiresApproval;
  }
  throwIfFailing();
  if (!needsApproval_) {
    status_ = LoginServiceStatus::Enabled;
  }
}

void SimulatedLoginService::unregisterMainApp() {
  ++unregistrations_;
  throwIfFailing();
  status_ = LoginServiceStatus::NotRegistered;
}

void SimulatedLoginService::throwIfFailing() const {
  if (failure_) {
    throw std::runtime_error(*failure_);
  }
}

namespace {

class SimulatedUpdater final : public Updater {
 public:
  explicit SimulatedUpdater(std::shared_ptr<SimulatedUpdaters::Counts> counts)
      : counts_(std::move(counts)) {
    ++counts_->started;
    ++counts_->live;
  }
  SimulatedUpdater(const SimulatedUpdater&) = delete;
  SimulatedUpdater& operator=(const SimulatedUpdater&) = delete;
  ~SimulatedUpdater() override { --counts_->live; }

  void checkForUpdates() override { ++counts_->checks; }

 private:
  std::shared_ptr<SimulatedUpdaters::Counts> counts_;
};

}  // namespace

std::unique_ptr<Updater> SimulatedUpdaters::makeStarted() {
  return std::make_unique<SimulatedUpdater>(counts_);
}

}  // namespace zephlin
