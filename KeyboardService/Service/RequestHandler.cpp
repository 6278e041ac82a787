#include "KeyboardService/Service/RequestHandler.h"

#include "KeyboardService/Protocol/Errors.h"

namespace zephlin {
namespace {

/// For the log: "A=1, B=2".
std::string description(const PropertySet& properties) {
  std::string text;
  for (const auto& [key, value] : properties) {
    text += (text.empty() ? "" : ", ") + key + '=' + std::to_string(value);
  }
  return printable(text, 256);
}

}  // namespace

RequestHandler::RequestHandler(KeyboardRegistry& registry, VirtualKeyboardBus& virtualKeyboards,
                               const Permissions& permissions, Log log)
    : registry_(registry),
      virtualKeyboards_(virtualKeyboards),
      permissions_(permissions),
      log_(std::move(log)) {}

void RequestHandler::respond(std::string_view line, uid_t user, const Reply& reply) {
  const auto response = [&]() -> Response {
    try {
      return std::visit([&](const auto& request) { return perform(request, user); },
                        decodeRequest(line));
    } catch (const RequestError& error) {
      return ErrorResponse{error.what()};
    }
  };
  reply(response());
}

Response RequestHandler::perform(const ListRequest& request, uid_t /*user*/) {
  return ListResponse{registry_.list(request.matching)};
}

Response RequestHandler::perform(const GetRequest& request, uid_t /*user*/) {
  return GetResponse{registry_.get(request.matching, request.key)};
}

Response RequestHandler::perform(const SetRequest& request, uid_t user) {
  permissions_.requireChangeBy(user);
  SetResponse response{registry_.set(request.matching, request.properties), {}};
  log_(description(request.properties) + " set on " + countedKeyboards(response.keyboards.size()) +
       " by user " + std::to_string(user));
  return response;
}

Response RequestHandler::perform(const PlugRequest& /*request*/, uid_t user) {
  permissions_.requireChangeBy(user);
  const BusHandle handle = virtualKeyboards_.plug();
  return PlugResponse{registry_.find({&virtualKeyboards_, handle}).value()};
}

Response RequestHandler::perform(const PullRequest& request, uid_t user) {
  permissions_.requireChangeBy(user);
  const auto origin = registry_.origin(request.registryID);
  if (!origin) {
    throw RequestError("no keyboard " + toText(request.registryID) + "; see hidutil list");
  }
  if (origin->bus != &virtualKeyboards_) {
    throw RequestError("keyboard " + toText(request.registryID) +
                       " was not plugged in by hidutil; unplug it by hand");
  }
  virtualKeyboards_.pull(origin->handle);
  return PullResponse{};
}

Response RequestHandler::perform(const SubscribeRequest& /*request*/, uid_t /*user*/) {
  return SubscribeResponse{};
}

}  // namespace zephlin
