#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "Platform/HidDevices.h"
#include "Platform/Linux/Watching/X11Connection.h"
#include "Platform/Menu.h"

namespace zephlin {

/// The X server's keyboard, by the X keyboard extension. Main thread; waits for the server.
namespace xkb {

/// To be called once on a connection, before the others. Whether the server has the extension.
bool use(const X11Connection& connection);

/// The code of the key with this name of four characters (the X Keyboard Extension's protocol,
/// section 3.4). It is the name of a place on the keyboard: what the user has put there does not
/// matter.
std::optional<std::uint8_t> keycode(const X11Connection& connection, std::string_view keyName);

/// Has the server send an event each time the modifiers change.
bool selectModifierChanges(const X11Connection& connection);

/// The flags that such an event tells; none for any other event.
std::optional<ModifierFlags> changedModifierFlags(const X11Connection& connection,
                                                  const xcb_generic_event_t& event);

/// As the keyboard is now; none without an answer.
std::optional<ModifierFlags> currentModifierFlags(const X11Connection& connection);

}  // namespace xkb

}  // namespace zephlin
