#include <nlohmann/json.hpp>

#include <initializer_list>

#include "KeyboardService/Protocol/Errors.h"
#include "KeyboardService/Protocol/Json.h"
#include "KeyboardService/Protocol/Messages.h"

namespace zephlin {
namespace {

using nlohmann::json;

constexpr JsonObjectShape requestLine{"the request", R"({"request":"list","matching":{}})"};

json toJson(const ListRequest& request) {
  return {{"request", "list"}, {"matching", zephlin::toJson(request.matching)}};
}

json toJson(const GetRequest& request) {
  return {
      {"request", "get"}, {"matching", zephlin::toJson(request.matching)}, {"key", request.key}};
}

json toJson(const SetRequest& request) {
  return {{"request", "set"},
          {"matching", zephlin::toJson(request.matching)},
          {"properties", request.properties}};
}

json toJson(const PlugRequest& /*request*/) {
  return json::object({{"request", "plug"}});
}

json toJson(const PullRequest& request) {
  return {{"request", "pull"}, {"registryID", toText(request.registryID)}};
}

json toJson(const SubscribeRequest& /*request*/) {
  return json::object({{"request", "subscribe"}});
}

/// Throws RequestError unless the object has exactly these members.
void requireMembers(const json& object, std::initializer_list<const char*> names) {
  for (const char* const name : names) {
    if (!object.contains(name)) {
      throw RequestError("the request lacks " + inQuotes(name));
    }
  }
  if (object.size() != names.size()) {
    throw RequestError("unexpected member in the request");
  }
}

std::string textMember(const json& object, const char* name) {
  const json& value = object.at(name);
  if (!value.is_string()) {
    throw RequestError("the request's " + inQuotes(name) + " must be text");
  }
  return value.get<std::string>();
}

ListRequest listRequestFromJson(const json& object) {
  requireMembers(object, {"request", "matching"});
  return {matchingFromJson(object.at("matching"))};
}

GetRequest getRequestFromJson(const json& object) {
  requireMembers(object, {"request", "matching", "key"});
  GetRequest request{matchingFromJson(object.at("matching")), textMember(object, "key")};
  requirePropertyKey(request.key);
  return request;
}

SetRequest setRequestFromJson(const json& object) {
  requireMembers(object, {"request", "matching", "properties"});
  return {matchingFromJson(object.at("matching")), propertiesFromJson(object.at("properties"))};
}

template <typename BareRequest>
BareRequest bareFromJson(const json& object) {
  requireMembers(object, {"request"});
  return {};
}

PullRequest pullFromJson(const json& object) {
  requireMembers(object, {"request", "registryID"});
  return {parseRegistryID(textMember(object, "registryID"))};
}

}  // namespace

std::string encode(const Request& request) {
  return jsonLine(std::visit([](const auto& each) { return toJson(each); }, request));
}

Request decodeRequest(std::string_view line) {
  const json object = parseJsonObject(line, requestLine);
  if (!object.contains("request")) {
    throw RequestError(R"(the request lacks "request")");
  }
  const std::string kind = textMember(object, "request");
  if (kind == "list") {
    return listRequestFromJson(object);
  }
  if (kind == "get") {
    return getRequestFromJson(object);
  }
  if (kind == "set") {
    return setRequestFromJson(object);
  }
  if (kind == "plug") {
    return bareFromJson<PlugRequest>(object);
  }
  if (kind == "pull") {
    return pullFromJson(object);
  }
  if (kind == "subscribe") {
    return bareFromJson<SubscribeRequest>(object);
  }
  throw RequestError("unknown request " + inQuotes(kind) +
                     "; known are list, get, set, plug, pull, subscribe");
}

}  // namespace zephlin
