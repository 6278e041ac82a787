#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "KeyboardService/Service/Evdev/KeyboardNodes.h"

namespace zephlin {

/// What is done to a keyboard so that its Caps Lock follows a delay.
enum class KeyboardWay {
  LeftAlone,   ///< The system's own behaviour is wanted.
  Watched,     ///< Its keys go their usual way.
  Grabbed,     ///< Its keys go through the service and a clone.
  Impossible,  ///< It needs a clone and cannot have one: see `whyImpossible`.
};

/// Without a delay, it is left alone. It is watched if that is enough: with a delay of 0 and a Caps
/// Lock LED.
KeyboardWay wayFor(const KeyboardNode& node, std::optional<std::chrono::milliseconds> delay);

/// Why a keyboard cannot have a clone, as the text of a state.
std::string whyImpossible(const KeyboardNode& node);

}  // namespace zephlin
