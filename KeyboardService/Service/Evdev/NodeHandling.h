#pragma once

#include <functional>
#include <optional>

#include "KeyboardService/Service/Evdev/EventNode.h"
#include "KeyboardService/Service/Evdev/KeyboardHandling.h"
#include "KeyboardService/Service/Evdev/KeyboardNodes.h"
#include "KeyboardService/Service/EventLoop.h"

namespace zephlin {

/// What watching and grabbing share: opening the node, naming what is in the way, and trying again.
class NodeHandling : public KeyboardHandling {
 public:
  void check() final;

 protected:
  NodeHandling(EventLoop& loop, KeyboardNode node, Report report);

  /// The node has just been opened.
  virtual void onOpen() = 0;

  /// Asks the kernel about the open node and calls `become` if there is an answer already.
  virtual void confirm() = 0;

  /// The node is about to be closed, and may not be usable.
  virtual void onClose() noexcept = 0;

  /// Runs an action that uses the node. A failure lets go of the keyboard and becomes its state.
  void attempt(const std::function<void()>& action);

  void become(const KeyboardState& state);
  void becomeHeld();

  [[nodiscard]] const KeyboardState& state() const { return state_; }
  [[nodiscard]] EventLoop& loop() const { return loop_; }
  EventNode& node() { return *node_; }

  /// Opens the node if need be, and confirms.
  void tryAgain();

  void close() noexcept;

 private:
  void fail(const std::string& reason);

  EventLoop& loop_;
  KeyboardNode place_;
  Report report_;
  KeyboardState state_{KeyboardState::Kind::Settling, "starting"};
  bool hasGone_ = false;
  std::optional<EventNode> node_;
  EventSource nextTry_;
};

}  // namespace zephlin
