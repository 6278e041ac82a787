#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <string_view>

#include "KeyboardService/Protocol/Messages.h"
#include "KeyboardService/Service/KeyboardRegistry.h"
#include "KeyboardService/Service/Log.h"
#include "KeyboardService/Service/Permissions.h"
#include "KeyboardService/Service/SettlingWaits.h"
#include "KeyboardService/Service/VirtualKeyboardBus.h"

namespace zephlin {

/// Carries out request lines, which come without line feed. Knows nothing of connections. The
/// constructor's references outlive it.
class RequestHandler {
 public:
  /// `waitLimit` is for how long a request may wait for keyboards.
  RequestHandler(EventLoop& loop, KeyboardRegistry& registry, VirtualKeyboardBus& virtualKeyboards,
                 Permissions permissions, LimitedLog& log,
                 std::chrono::milliseconds waitLimit = SettlingWaits::defaultLimit);

  using Reply = std::function<void(const Response& response)>;

  /// Calls `reply` exactly once: within this call, or from the event loop if the keyboards that the
  /// request concerns have yet to settle. `user` is the client's, as reported by the kernel. A
  /// request that fails has changed nothing. The caller, which owns the connections, carries out a
  /// subscription.
  void respond(std::string_view line, uid_t user, const Reply& reply);

 private:
  void perform(const ListRequest& request, uid_t user, const Reply& reply);
  void perform(const GetRequest& request, uid_t user, const Reply& reply);
  void perform(const SetRequest& request, uid_t user, const Reply& reply);
  void perform(const PlugRequest& request, uid_t user, const Reply& reply);
  void perform(const PullRequest& request, uid_t user, const Reply& reply);
  void perform(const SubscribeRequest& request, uid_t user, const Reply& reply);

  KeyboardRegistry& registry_;
  VirtualKeyboardBus& virtualKeyboards_;
  Permissions permissions_;
  LimitedLog& log_;
  SettlingWaits waits_;
};

}  // namespace zephlin
