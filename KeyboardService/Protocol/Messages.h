#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "KeyboardService/Protocol/Keyboard.h"
#include "KeyboardService/Protocol/Properties.h"

namespace zephlin {

struct ListRequest {
  Matching matching;
  bool operator==(const ListRequest&) const = default;
};

struct GetRequest {
  Matching matching;
  std::string key;
  bool operator==(const GetRequest&) const = default;
};

struct SetRequest {
  Matching matching;
  PropertySet properties;
  bool operator==(const SetRequest&) const = default;
};

/// Plugs in one more virtual keyboard.
struct PlugRequest {
  bool operator==(const PlugRequest&) const = default;
};

/// Pulls out a virtual keyboard.
struct PullRequest {
  RegistryID registryID{};
  bool operator==(const PullRequest&) const = default;
};

/// Subscribes the connection to the keyboards that appear from now on; it takes no other request. A
/// client that subscribes first and then lists, on another connection, misses none.
struct SubscribeRequest {
  bool operator==(const SubscribeRequest&) const = default;
};

using Request =
    std::variant<ListRequest, GetRequest, SetRequest, PlugRequest, PullRequest, SubscribeRequest>;

/// One line of JSON without its line feed.
std::string encode(const Request& request);

/// Reads one line without its line feed. Throws RequestError.
Request decodeRequest(std::string_view line);

struct ListResponse {
  std::vector<Keyboard> keyboards;
  bool operator==(const ListResponse&) const = default;
};

/// A keyboard and its value of the requested property, if that is set.
struct KeyboardValue {
  RegistryID registryID{};
  std::optional<std::int64_t> value;
  bool operator==(const KeyboardValue&) const = default;
};

struct GetResponse {
  std::vector<KeyboardValue> values;
  bool operator==(const GetResponse&) const = default;
};

/// A keyboard that does not do as asked, and why: a few words for the user.
struct UnsetKeyboard {
  RegistryID registryID{};
  std::string reason;
  bool operator==(const UnsetKeyboard&) const = default;
};

/// The keyboards that matched the request: those on which its properties are in force, and the
/// others.
struct SetResponse {
  std::vector<RegistryID> keyboards;
  std::vector<UnsetKeyboard> unset;
  bool operator==(const SetResponse&) const = default;
};

struct PlugResponse {
  RegistryID registryID{};
  bool operator==(const PlugResponse&) const = default;
};

struct PullResponse {
  bool operator==(const PullResponse&) const = default;
};

/// An AppearedNotice follows for each keyboard that appears. Looks like {"subscribed":true}.
struct SubscribeResponse {
  bool operator==(const SubscribeResponse&) const = default;
};

/// Sent on a subscribed connection, not in response to a request. Looks like
/// {"appeared":"100000001"}.
struct AppearedNotice {
  RegistryID registryID{};
  bool operator==(const AppearedNotice&) const = default;
};

/// The request failed and nothing has changed, unless the text says so.
struct ErrorResponse {
  std::string text;
  bool operator==(const ErrorResponse&) const = default;
};

using Response = std::variant<ListResponse, GetResponse, SetResponse, PlugResponse, PullResponse,
                              SubscribeResponse, AppearedNotice, ErrorResponse>;

/// A line that is not a valid response.
class ResponseError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// One line of JSON without its line feed.
std::string encode(const Response& response);

/// Reads one line without its line feed. Throws ResponseError.
Response decodeResponse(std::string_view line);

}  // namespace zephlin
