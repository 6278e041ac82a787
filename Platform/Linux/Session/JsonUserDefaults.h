#pragma once

#include <nlohmann/json.hpp>

#include <functional>
#include <set>
#include <string>

#include "Platform/Services.h"

namespace zephlin {

class FileReplacement;

/// Settings in a file of typed JSON, an object that is written so that a person can read it.
///
/// The file is read each time, and other processes may change it at any time. Everything else in it
/// is kept. A file that is not a JSON object is moved aside before something is stored. If the file
/// cannot be written, values hold for this process, and are stored with the next value that can be.
/// Each cause is logged once.
class JsonUserDefaults final : public UserDefaults {
 public:
  /// Reads nothing yet. The log outlives the settings.
  JsonUserDefaults(std::string path, SystemLog& log);

  [[nodiscard]] std::optional<bool> boolean(const std::string& key) const override;
  [[nodiscard]] bool boolForKey(const std::string& key) const override;
  void setBoolean(const std::string& key, bool value) override;
  /// A number that is not finite is stored as null: JSON cannot express it.
  void setDouble(const std::string& key, double value) override;

 private:
  [[nodiscard]] nlohmann::ordered_json stored(const std::string& key) const;
  void set(const std::string& key, nlohmann::ordered_json value);
  void store() const;
  [[nodiscard]] nlohmann::ordered_json readForReplacement(const FileReplacement& file) const;

  std::string path_;
  SystemLog& log_;
  /// Values that could not be stored yet.
  nlohmann::ordered_json unsaved_ = nlohmann::ordered_json::object();
  std::set<std::string> loggedCauses_;
};

}  // namespace zephlin
