#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>

#include "KeyboardService/Protocol/Messages.h"
#include "KeyboardService/Service/KeyboardRegistry.h"
#include "KeyboardService/Service/Permissions.h"
#include "KeyboardService/Service/VirtualKeyboardBus.h"

namespace zephlin {

/// Carries out request lines, which come without line feed. Knows nothing of connections. The
/// constructor's arguments outlive it.
class RequestHandler {
 public:
  RequestHandler(KeyboardRegistry& registry, VirtualKeyboardBus& virtualKeyboards,
                 const Permissions& permissions, Log log);

  /// `user` is the client's, as reported by the kernel. A request that fails has changed nothing,
  /// or the response says what. The caller, which owns the connections, carries out a subscription.
  Response respond(std::string_view line, uid_t user);

 private:
  Response perform(const ListRequest& request, uid_t user);
  Response perform(const GetRequest& request, uid_t user);
  Response perform(const SetRequest& request, uid_t user);
  Response perform(const PlugRequest& request, uid_t user);
  Response perform(const PullRequest& request, uid_t user);
  Response perform(const SubscribeRequest& request, uid_t user);

  KeyboardRegistry& registry_;
  VirtualKeyboardBus& virtualKeyboards_;
  const Permissions& permissions_;
  Log log_;
};

}  // namespace zephlin
