#include "Platform/Linux/Session/JsonUserDefaults.h"

#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

#include "Platform/Linux/Session/FileReplacement.h"

namespace zephlin {

namespace {

using Json = nlohmann::ordered_json;

/// Settings are never nested deeper. The library writes nested values recursively.
constexpr int maximumNesting = 100;

/// The object that the text holds; absent if it holds anything else.
std::optional<Json> parseObject(const std::string& text) {
  bool isTooDeep = false;
  Json object = Json::parse(
      text,
      [&isTooDeep](int depth, Json::parse_event_t, const Json&) {
        isTooDeep = isTooDeep || depth > maximumNesting;
        return !isTooDeep;
      },
      false);
  // The library stops at a NUL.
  const bool isWhole = text.find('\0') == std::string::npos;
  return isWhole && !isTooDeep && object.is_object() ? std::optional(std::move(object))
                                                     : std::nullopt;
}

Json storedIn(const std::string& path) {
  try {
    return parseObject(readFile(path).value_or("")).value_or(Json::object());
  } catch (const std::system_error&) {
    return Json::object();  // Storing something logs the cause.
  }
}

std::string firstFreeName(const std::string& path) {
  std::string name = path;
  for (int number = 2; std::filesystem::exists(std::filesystem::symlink_status(name)); ++number) {
    name = path + "." + std::to_string(number);
  }
  return name;
}

}  // namespace

JsonUserDefaults::JsonUserDefaults(std::string path, SystemLog& log)
    : path_(std::move(path)), log_(log) {}

Json JsonUserDefaults::stored(const std::string& key) const {
  return unsaved_.contains(key) ? unsaved_[key] : storedIn(path_).value(key, Json());
}

bool JsonUserDefaults::boolForKey(const std::string& key) const {
  const Json value = stored(key);
  return value.is_boolean() ? value.get<bool>() : value.is_number() && value.get<double>() != 0;
}

std::optional<bool> JsonUserDefaults::boolean(const std::string& key) const {
  const Json value = stored(key);
  return value.is_boolean() ? std::optional(value.get<bool>()) : std::nullopt;
}

void JsonUserDefaults::setBoolean(const std::string& key, bool value) {
  set(key, value);
}

void JsonUserDefaults::setDouble(const std::string& key, double value) {
  set(key, value);
}

void JsonUserDefaults::set(const std::string& key, Json value) {
  unsaved_[key] = std::move(value);
  try {
    store();
    unsaved_.clear();
  } catch (const std::system_error& error) {
    if (loggedCauses_.insert(error.what()).second) {
      log_.log(
          std::string("Zephlin: cannot save settings: ") + error.what() +
          "; they hold until Zephlin quits, and the next change saves them once this is fixed");
    }
  }
}

void JsonUserDefaults::store() const {
  FileReplacement file(path_);
  Json object = readForReplacement(file);
  object.update(unsaved_);
  file.commit(object.dump(2) + "\n");
}

Json JsonUserDefaults::readForReplacement(const FileReplacement& file) const {
  const std::optional<std::string> content = file.currentContent();
  if (!content) {
    return Json::object();
  }
  if (std::optional<Json> object = parseObject(*content)) {
    return *std::move(object);
  }
  const std::string aside = firstFreeName(file.path() + ".unreadable");
  std::filesystem::rename(file.path(), aside);
  log_.log("Zephlin: " + file.path() + " is not a JSON object; it is now " + aside);
  return Json::object();
}

}  // namespace zephlin
