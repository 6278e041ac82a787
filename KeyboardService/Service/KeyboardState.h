#pragma once

#include <string>

namespace zephlin {

/// Whether a keyboard does what its `CapsLockDelayOverride` asks for. The text is for people: how
/// it is done ("watched"), or what is in the way ("a key is held down").
struct KeyboardState {
  enum class Kind {
    Default,   ///< It is left to the system, as asked.
    Settling,  ///< Not yet, as far as is known.
    InForce,
    NotInForce,  ///< Not before something changes.
  };

  Kind kind = Kind::Default;
  std::string text = "default";

  bool operator==(const KeyboardState&) const = default;
};

}  // namespace zephlin
