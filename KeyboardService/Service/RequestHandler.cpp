#include "KeyboardService/Service/RequestHandler.h"

#include <optional>
#include <utility>

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

RequestHandler::RequestHandler(EventLoop& loop, KeyboardRegistry& registry,
                               VirtualKeyboardBus& virtualKeyboards, Permissions permissions,
                               LimitedLog& log, std::chrono::milliseconds waitLimit)
    : registry_(registry),
      virtualKeyboards_(virtualKeyboards),
      permissions_(std::move(permissions)),
      log_(log),
      waits_(loop, registry, waitLimit) {}

void RequestHandler::respond(std::string_view line, uid_t user, const Reply& reply) {
  std::optional<ErrorResponse> failure;
  log_.during("requests of user " + std::to_string(user), [&] {
    try {
      std::visit([&](const auto& request) { perform(request, user, reply); }, decodeRequest(line));
    } catch (const RequestError& error) {
      failure = {error.what()};
    }
  });
  if (failure) {
    reply(*failure);
  }
}

void RequestHandler::perform(const ListRequest& request, uid_t /*user*/, const Reply& reply) {
  waits_.ask(registry_.matching(request.matching), [this, matching = request.matching, reply] {
    reply(ListResponse{registry_.list(matching)});
  });
}

void RequestHandler::perform(const GetRequest& request, uid_t /*user*/, const Reply& reply) {
  waits_.ask(registry_.matching(request.matching), [this, request, reply] {
    reply(GetResponse{registry_.get(request.matching, request.key)});
  });
}

void RequestHandler::perform(const SetRequest& request, uid_t user, const Reply& reply) {
  const ChangeableKeyboards changeable = permissions_.requireChangeBy(user);
  KeyboardRegistry::IDs keyboards;
  std::vector<UnsetKeyboard> others;
  for (const RegistryID registryID : registry_.matching(request.matching)) {
    if (changeable.includes(registry_.description(registryID).seat)) {
      keyboards.push_back(registryID);
    } else {
      others.push_back({registryID, notOnYourSeat});
    }
  }
  if (const std::size_t changed = registry_.set(keyboards, request.properties); changed > 0) {
    log_.write(description(request.properties) + " set on " + countedKeyboards(changed) +
               " by user " + std::to_string(user));
  }
  waits_.ask(keyboards, [this, keyboards, others, properties = request.properties, reply] {
    SetResponse response = registry_.outcome(keyboards, properties);
    response.unset.insert(response.unset.end(), others.begin(), others.end());
    reply(response);
  });
}

void RequestHandler::perform(const PlugRequest& /*request*/, uid_t user, const Reply& reply) {
  static_cast<void>(permissions_.requireChangeBy(user));
  const BusHandle handle = virtualKeyboards_.plug();
  reply(PlugResponse{registry_.find({&virtualKeyboards_, handle}).value()});
}

void RequestHandler::perform(const PullRequest& request, uid_t user, const Reply& reply) {
  static_cast<void>(permissions_.requireChangeBy(user));
  const auto origin = registry_.origin(request.registryID);
  if (!origin) {
    throw RequestError("no keyboard " + toText(request.registryID) + "; see hidutil list");
  }
  if (origin->bus != &virtualKeyboards_) {
    throw RequestError("keyboard " + toText(request.registryID) +
                       " was not plugged in by hidutil; unplug it by hand");
  }
  virtualKeyboards_.pull(origin->handle);
  reply(PullResponse{});
}

void RequestHandler::perform(const SubscribeRequest& /*request*/, uid_t /*user*/,
                             const Reply& reply) {
  reply(SubscribeResponse{});
}

}  // namespace zephlin
