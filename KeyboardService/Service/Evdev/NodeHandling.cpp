#include "KeyboardService/Service/Evdev/NodeHandling.h"

#include <unistd.h>

#include <system_error>
#include <utility>

#include "KeyboardService/Protocol/Errors.h"
#include "KeyboardService/Service/Evdev/KeyboardHolder.h"

namespace zephlin {
namespace {

using namespace std::chrono_literals;
using Kind = KeyboardState::Kind;

constexpr std::chrono::seconds timeBetweenTries = 5s;

}  // namespace

NodeHandling::NodeHandling(EventLoop& loop, KeyboardNode node, Report report)
    : loop_(loop),
      place_(std::move(node)),
      report_(std::move(report)),
      nextTry_(loop.timer([this] { tryAgain(); })) {}

void NodeHandling::check() {
  tryAgain();
  report_(state_);
}

void NodeHandling::tryAgain() {
  if (hasGone_) {
    return;
  }
  attempt([this] {
    if (!node_) {
      node_.emplace(place_.path);
      onOpen();
    }
    confirm();
  });
}

void NodeHandling::attempt(const std::function<void()>& action) {
  try {
    action();
  } catch (const std::system_error& error) {
    // A descriptor that was revoked fails like one whose device has gone.
    hasGone_ =
        error.code() == std::errc::no_such_device && ::access(place_.systemPath.c_str(), F_OK) != 0;
    fail(hasGone_ ? "the keyboard has gone" : printable(error.what()));
  } catch (const RequestError& error) {
    fail(error.what());
  }
}

void NodeHandling::fail(const std::string& reason) {
  close();
  become({Kind::NotInForce, reason});
}

void NodeHandling::close() noexcept {
  if (node_) {
    onClose();
    node_.reset();
  }
}

void NodeHandling::becomeHeld() {
  const bool isKnown = state_.kind == Kind::NotInForce && state_.text.starts_with(heldByAnother);
  // Looking for the holder takes long.
  become(isKnown
             ? state_
             : KeyboardState{Kind::NotInForce, std::string(heldByAnother) + holderOf(place_.path)});
}

void NodeHandling::become(const KeyboardState& state) {
  if (state.kind == Kind::NotInForce && !hasGone_) {
    nextTry_.setDelay(timeBetweenTries);
  }
  if (state == state_) {
    return;
  }
  state_ = state;
  report_(state_);
}

}  // namespace zephlin
