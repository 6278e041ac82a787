#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "KeyboardService/Protocol/Keyboard.h"
#include "KeyboardService/Service/Evdev/KeyboardNodes.h"
#include "KeyboardService/Service/Permissions.h"

namespace zephlin {

/// Whether something is in the way of using a device.
struct Finding {
  enum class Kind {
    Nothing,
    Obstacle,
    Unseen,  ///< This user may not look.
  };

  Kind kind = Kind::Nothing;
  std::string obstacle = {};  ///< As the text of a state.
};

/// Whether the keyboard can be opened, and no other program has grabbed it. It is open for a moment
/// and is not grabbed: the service's probe is written, and nothing that is typed is read.
Finding openForAMoment(const KeyboardNode& node);

/// Whether clones can be created. None is.
Finding tryUinput();

/// What will become of a keyboard when its delay is set to 0.
struct CheckedKeyboard {
  enum class Outlook { Instant, NotInstant, Unseen };

  KeyboardNode node;
  std::optional<std::string> state;  ///< What the service says, if it knows the keyboard.
  Outlook outlook = Outlook::Unseen;
  std::string text = {};  ///< "watched", "grabbed: it has no Caps Lock LED", "not possible: …".
};

/// Decides that as the service does. The keyboard is opened only if the service does not use it.
/// `changeable` are the keyboards that the user may change, if any.
CheckedKeyboard checkKeyboard(const KeyboardNode& node, const std::optional<std::string>& state,
                              const std::optional<ChangeableKeyboards>& changeable,
                              const std::function<Finding(const KeyboardNode&)>& open,
                              const Finding& uinput);

/// The service's states of these keyboards, in their order; nothing for one that it does not know.
/// Keyboards of the same kind are told apart by their order, as the protocol names no nodes.
std::vector<std::optional<std::string>> statesOf(const std::vector<KeyboardNode>& nodes,
                                                 std::vector<Keyboard> listed);

/// A line for each keyboard, and a header.
std::string keyboardTable(const std::vector<CheckedKeyboard>& keyboards);

}  // namespace zephlin
