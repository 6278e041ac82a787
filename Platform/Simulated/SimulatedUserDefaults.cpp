#include "Platform/Simulated/SimulatedUserDefaults.h"

namespace zephlin {

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

}  // namespace zephlin
