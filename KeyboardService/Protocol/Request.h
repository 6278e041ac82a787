#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <variant>

#include "KeyboardService/Protocol/Matching.h"
#include "KeyboardService/Protocol/Properties.h"
#include "KeyboardService/Protocol/RegistryID.h"

namespace zephlin {

/// Where the service listens unless it is told otherwise.
constexpr std::string_view defaultSocketPath = "/run/zephlin/hidd.sock";

/// The longest request line, without its line feed, that the service reads.
constexpr std::size_t maximumRequestBytes = std::size_t{64} * 1024;

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

/// Has the service say on this connection which keyboards appear from now on, and nothing else.
/// Whoever subscribes first and lists then, on another connection, misses none.
struct SubscribeRequest {
  bool operator==(const SubscribeRequest&) const = default;
};

using Request =
    std::variant<ListRequest, GetRequest, SetRequest, PlugRequest, PullRequest, SubscribeRequest>;

/// One line of JSON without its line feed.
std::string encode(const Request& request);

/// Reads one line without its line feed. Throws RequestError.
Request decodeRequest(std::string_view line);

/// Reads a RegistryID as a user gives it. Throws RequestError.
RegistryID parseRegistryID(std::string_view text);

}  // namespace zephlin
