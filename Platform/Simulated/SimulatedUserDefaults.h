#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>

#include "Platform/Services.h"

namespace zephlin {

/// What is stored. It outlives a desktop where the same object is given to the next one.
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

}  // namespace zephlin
