#pragma once

#include <sys/types.h>

#include <functional>
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

  using Reply = std::function<void(const Response& response)>;

  /// Calls `reply` exactly once, within this call or later from the event loop. `user` is the
  /// client's, as reported by the kernel. A request that fails has changed nothing, or the response
  /// says what. The caller, which owns the connections, carries out a subscription.
  void respond(std::string_view line, uid_t user, const Reply& reply);

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
