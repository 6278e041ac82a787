#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "Platform/Keyboard.h"
#include "Platform/Linux/Watching/X11Connection.h"
#include "Platform/Menu.h"

namespace zephlin {

/// The current modifiers of the X server's keyboard, over one connection that is kept. Main thread.
class X11KeyboardState {
 public:
  /// Null if the server or its keyboard extension cannot be reached.
  static std::unique_ptr<X11KeyboardState> open();

  /// No flags once the server has gone. Waits for the server.
  [[nodiscard]] ModifierFlags modifierFlags() const;

 private:
  explicit X11KeyboardState(std::unique_ptr<X11Connection> connection)
      : connection_(std::move(connection)) {}

  std::unique_ptr<X11Connection> connection_;
};

/// Calls back with each change of the modifiers. Null if the X server or its keyboard extension
/// cannot be reached. Main thread.
std::unique_ptr<Observation> listenToX11Modifiers(std::function<void(ModifierFlags)> callback);

}  // namespace zephlin
