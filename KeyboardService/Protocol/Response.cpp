#include <nlohmann/json.hpp>

#include "KeyboardService/Protocol/Errors.h"
#include "KeyboardService/Protocol/Json.h"
#include "KeyboardService/Protocol/Messages.h"

namespace zephlin {
namespace {

using nlohmann::json;

constexpr JsonObjectShape responseLine{"the response", R"({"response":"list","keyboards":[]})"};

json toJson(const Keyboard& keyboard) {
  const KeyboardDescription& description = keyboard.description;
  return {{"registryID", toText(keyboard.registryID)},
          {"primaryUsagePage", description.primaryUsagePage},
          {"primaryUsage", description.primaryUsage},
          {"vendorID", description.vendorID},
          {"productID", description.productID},
          {"product", description.product},
          {"transport", description.transport},
          {"seat", description.seat},
          {"state", keyboard.state}};
}

json toJson(const ListResponse& response) {
  json keyboards = json::array();
  for (const Keyboard& each : response.keyboards) {
    keyboards.push_back(toJson(each));
  }
  return {{"response", "list"}, {"keyboards", std::move(keyboards)}};
}

json toJson(const GetResponse& response) {
  json values = json::array();
  for (const KeyboardValue& each : response.values) {
    values.push_back({{"registryID", toText(each.registryID)},
                      {"value", each.value ? json(*each.value) : json(nullptr)}});
  }
  return {{"response", "get"}, {"values", std::move(values)}};
}

json toJson(const SetResponse& response) {
  json keyboards = json::array();
  for (const RegistryID each : response.keyboards) {
    keyboards.push_back(toText(each));
  }
  json unset = json::array();
  for (const UnsetKeyboard& each : response.unset) {
    unset.push_back({{"registryID", toText(each.registryID)}, {"reason", each.reason}});
  }
  return {{"response", "set"}, {"keyboards", std::move(keyboards)}, {"unset", std::move(unset)}};
}

json toJson(const PlugResponse& response) {
  return {{"response", "plug"}, {"registryID", toText(response.registryID)}};
}

json toJson(const PullResponse& /*response*/) {
  return json::object({{"response", "pull"}});
}

json toJson(const SubscribeResponse& /*response*/) {
  return json::object({{"subscribed", true}});
}

json toJson(const AppearedNotice& notice) {
  return {{"appeared", toText(notice.registryID)}};
}

json toJson(const ErrorResponse& response) {
  return {{"response", "error"}, {"text", response.text}};
}

std::int64_t number(const json& value) {
  const auto result = wholeNumber(value);
  if (!result) {
    throw ResponseError("a number was expected");
  }
  return *result;
}

RegistryID registryID(const json& value) {
  const auto result = registryIDFromText(value.get_ref<const std::string&>());
  if (!result) {
    throw ResponseError("a RegistryID was expected");
  }
  return *result;
}

const json& list(const json& object, const char* name) {
  const json& value = object.at(name);
  if (!value.is_array()) {
    throw ResponseError("a list was expected");
  }
  return value;
}

/// A service of an older version sends no "seat", no "state" and, in setResponseFromJson, no
/// "unset".
Keyboard keyboardFromJson(const json& value) {
  return {registryID(value.at("registryID")),
          {number(value.at("primaryUsagePage")), number(value.at("primaryUsage")),
           number(value.at("vendorID")), number(value.at("productID")),
           value.at("product").get<std::string>(), value.at("transport").get<std::string>(),
           value.value("seat", "")},
          value.value("state", "")};
}

ListResponse listResponseFromJson(const json& object) {
  ListResponse response;
  for (const json& each : list(object, "keyboards")) {
    response.keyboards.push_back(keyboardFromJson(each));
  }
  return response;
}

GetResponse getResponseFromJson(const json& object) {
  GetResponse response;
  for (const json& each : list(object, "values")) {
    const json& value = each.at("value");
    response.values.push_back(
        {registryID(each.at("registryID")),
         value.is_null() ? std::nullopt : std::optional<std::int64_t>(number(value))});
  }
  return response;
}

SetResponse setResponseFromJson(const json& object) {
  SetResponse response;
  for (const json& each : list(object, "keyboards")) {
    response.keyboards.push_back(registryID(each));
  }
  if (object.contains("unset")) {
    for (const json& each : list(object, "unset")) {
      response.unset.push_back(
          {registryID(each.at("registryID")), each.at("reason").get<std::string>()});
    }
  }
  return response;
}

SubscribeResponse subscribeFromJson(const json& object) {
  if (object.at("subscribed") != true) {
    throw ResponseError("a subscription was expected");
  }
  return {};
}

Response responseFromJson(const json& object) {
  if (object.contains("appeared")) {
    return AppearedNotice{registryID(object.at("appeared"))};
  }
  if (object.contains("subscribed")) {
    return subscribeFromJson(object);
  }
  const auto& kind = object.at("response").get_ref<const std::string&>();
  if (kind == "list") {
    return listResponseFromJson(object);
  }
  if (kind == "get") {
    return getResponseFromJson(object);
  }
  if (kind == "set") {
    return setResponseFromJson(object);
  }
  if (kind == "plug") {
    return PlugResponse{registryID(object.at("registryID"))};
  }
  if (kind == "pull") {
    return PullResponse{};
  }
  if (kind == "error") {
    return ErrorResponse{object.at("text").get<std::string>()};
  }
  throw ResponseError("unknown kind of response");
}

}  // namespace

std::string encode(const Response& response) {
  return jsonLine(std::visit([](const auto& each) { return toJson(each); }, response));
}

Response decodeResponse(std::string_view line) {
  try {
    return responseFromJson(parseJsonObject(line, responseLine));
  } catch (const RequestError& error) {
    throw ResponseError(error.what());
  } catch (const json::exception&) {
    throw ResponseError("a member is absent or of the wrong kind");
  }
}

}  // namespace zephlin
