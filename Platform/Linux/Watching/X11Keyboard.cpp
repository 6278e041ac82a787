#include "Platform/Linux/Watching/X11Keyboard.h"

#include <xcb/xinput.h>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <set>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "Platform/Linux/Watching/EndableCallback.h"
#include "Platform/Linux/Watching/ServerTime.h"

namespace zephlin {

namespace {

/// XInput 2.1 sends raw events also while another program grabs the keyboard.
bool useXInput(const X11Connection& connection) {
  if (connection.extension(&xcb_input_id) == nullptr) {
    return false;
  }
  const X11Message<xcb_input_xi_query_version_reply_t> version(xcb_input_xi_query_version_reply(
      connection.get(), xcb_input_xi_query_version(connection.get(), 2, 1), nullptr));
  return version && (version->major_version > 2 ||
                     (version->major_version == 2 && version->minor_version >= 1));
}

bool selectRawKeys(const X11Connection& connection) {
  const struct {
    xcb_input_event_mask_t head;
    std::uint32_t bits;
  } mask{{XCB_INPUT_DEVICE_ALL_MASTER, 1},
         XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE};
  return connection.succeeds(
      xcb_input_xi_select_events_checked(connection.get(), connection.rootWindow(), 1, &mask.head));
}

/// The code of the key with this name of four characters (the X Keyboard Extension's protocol,
/// section 3.4). It names a place on the keyboard: what the user has put there does not matter.
std::optional<std::uint8_t> keycodeOf(const X11Connection& connection, std::string_view keyName) {
  const auto cookie =
      xcb_xkb_get_names(connection.get(), XCB_XKB_ID_USE_CORE_KBD, XCB_XKB_NAME_DETAIL_KEY_NAMES);
  const X11Message<xcb_xkb_get_names_reply_t> reply(
      xcb_xkb_get_names_reply(connection.get(), cookie, nullptr));
  if (!reply || (reply->which & XCB_XKB_NAME_DETAIL_KEY_NAMES) == 0) {
    return std::nullopt;
  }
  xcb_xkb_get_names_value_list_t values{};
  xcb_xkb_get_names_value_list_unpack(xcb_xkb_get_names_value_list(reply.get()), reply->nTypes,
                                      reply->indicators, reply->virtualMods, reply->groupNames,
                                      reply->nKeys, reply->nKeyAliases, reply->nRadioGroups,
                                      reply->which, &values);
  const std::span names(values.keyNames, reply->nKeys);
  const auto found = std::find_if(names.begin(), names.end(), [&](const auto& each) {
    return std::string_view(each.name, sizeof each.name) == keyName;
  });
  if (found == names.end()) {
    return std::nullopt;
  }
  return static_cast<std::uint8_t>(reply->firstKey + (found - names.begin()));
}

class CapsLockKeyObservation final : public Observation {
 public:
  CapsLockKeyObservation(std::unique_ptr<X11Connection> connection, std::uint8_t keycode,
                         std::function<void(const KeyEvent&)> callback)
      : keycode_(keycode), callback_(std::move(callback)), connection_(std::move(connection)) {
    connection_->watch([this] { receive(); });
  }

 private:
  void receive() {
    std::vector<KeyEvent> moves;
    for (const auto& event : connection_->takeEvents()) {
      if (const auto isDown = movement(*event)) {
        const auto& key = reinterpret_cast<const xcb_input_raw_key_press_event_t&>(*event);
        moves.push_back({*isDown, serverTime(key.time)});
      }
    }
    callback_.callForEach(moves);
  }

  /// Whether the key goes down or comes up; nothing for any other event.
  std::optional<bool> movement(const xcb_generic_event_t& event) {
    const auto& key = reinterpret_cast<const xcb_input_raw_key_press_event_t&>(event);
    if (event.response_type != XCB_GE_GENERIC ||
        key.extension != connection_->extension(&xcb_input_id)->major_opcode ||
        key.detail != keycode_) {
      return std::nullopt;
    }
    if (key.event_type == XCB_INPUT_RAW_KEY_PRESS && heldOn_.insert(key.sourceid).second) {
      return true;
    }
    if (key.event_type == XCB_INPUT_RAW_KEY_RELEASE && heldOn_.erase(key.sourceid) > 0) {
      return false;
    }
    return std::nullopt;
  }

  std::uint8_t keycode_;
  EndableCallback<const KeyEvent&> callback_;
  std::unique_ptr<X11Connection> connection_;
  /// The keyboards whose key is down.
  std::set<xcb_input_device_id_t> heldOn_;
};

std::unique_ptr<X11Connection> connectionWithXkb() {
  auto connection = X11Connection::open();
  return connection && connection->useXkb() ? std::move(connection) : nullptr;
}

ModifierFlags flagsOf(unsigned modifiers, unsigned lockedModifiers) {
  ModifierFlags flags = 0;
  if ((lockedModifiers & XCB_MOD_MASK_LOCK) != 0) {
    flags |= modifierCapsLock;
  }
  if ((modifiers & XCB_MOD_MASK_SHIFT) != 0) {
    flags |= modifierShift;
  }
  if ((modifiers & XCB_MOD_MASK_CONTROL) != 0) {
    flags |= modifierCommand;
  }
  return flags;
}

/// No flags once the server has gone. Waits for the server.
ModifierFlags currentFlags(const X11Connection& connection) {
  const auto cookie = xcb_xkb_get_state(connection.get(), XCB_XKB_ID_USE_CORE_KBD);
  const X11Message<xcb_xkb_get_state_reply_t> state(
      xcb_xkb_get_state_reply(connection.get(), cookie, nullptr));
  return state ? flagsOf(state->mods, state->lockedMods) : 0;
}

/// Has the server send an event each time the modifiers change.
bool selectModifierChanges(const X11Connection& connection) {
  constexpr std::uint16_t parts =
      XCB_XKB_STATE_PART_MODIFIER_STATE | XCB_XKB_STATE_PART_MODIFIER_LOCK;
  xcb_xkb_select_events_details_t details{};
  details.affectState = parts;
  details.stateDetails = parts;
  return connection.succeeds(
      xcb_xkb_select_events_aux_checked(connection.get(), XCB_XKB_ID_USE_CORE_KBD,
                                        XCB_XKB_EVENT_TYPE_STATE_NOTIFY, 0, 0, 0, 0, &details));
}

/// What such an event reports; nothing for any other event.
std::optional<FlagsEvent> modifierChange(const X11Connection& connection,
                                         const xcb_generic_event_t& event) {
  const auto& state = reinterpret_cast<const xcb_xkb_state_notify_event_t&>(event);
  if (event.response_type != connection.extension(&xcb_xkb_id)->first_event ||
      state.xkbType != XCB_XKB_STATE_NOTIFY) {
    return std::nullopt;
  }
  return FlagsEvent{flagsOf(state.mods, state.lockedMods), serverTime(state.time)};
}

class ModifierObservation final : public Observation {
 public:
  ModifierObservation(std::unique_ptr<X11Connection> connection,
                      std::function<void(const FlagsEvent&)> callback)
      : callback_(std::move(callback)),
        connection_(std::move(connection)),
        undelivered_{{currentFlags(*connection_), std::nullopt}} {
    connection_->watch([this] { receive(); });
  }

 private:
  void receive() {
    std::vector<FlagsEvent> changes;
    for (const auto& event : connection_->takeEvents()) {
      if (const auto change = modifierChange(*connection_, *event)) {
        changes.push_back(*change);
      }
    }
    if (!changes.empty()) {
      changes.insert(changes.begin(), undelivered_.begin(), undelivered_.end());
      undelivered_.clear();
    }
    callback_.callForEach(changes);
  }

  EndableCallback<const FlagsEvent&> callback_;
  std::unique_ptr<X11Connection> connection_;
  std::vector<FlagsEvent> undelivered_;
};

}  // namespace

std::variant<std::unique_ptr<Observation>, std::int32_t> openX11CapsLockKey(
    std::function<void(const KeyEvent&)> callback) {
  auto connection = X11Connection::open();
  if (!connection) {
    return ECONNREFUSED;
  }
  if (!useXInput(*connection) || !connection->useXkb()) {
    return ENOSYS;
  }
  const auto keycode = keycodeOf(*connection, "CAPS");
  if (!keycode) {
    return ENXIO;
  }
  if (!selectRawKeys(*connection)) {
    return EACCES;
  }
  return std::make_unique<CapsLockKeyObservation>(std::move(connection), *keycode,
                                                  std::move(callback));
}

std::unique_ptr<X11KeyboardState> X11KeyboardState::open() {
  auto connection = connectionWithXkb();
  if (!connection) {
    return nullptr;
  }
  return std::unique_ptr<X11KeyboardState>(new X11KeyboardState(std::move(connection)));
}

ModifierFlags X11KeyboardState::modifierFlags() const {
  return currentFlags(*connection_);
}

std::unique_ptr<Observation> listenToX11Modifiers(std::function<void(const FlagsEvent&)> callback) {
  auto connection = connectionWithXkb();
  if (!connection || !selectModifierChanges(*connection)) {
    return nullptr;
  }
  return std::make_unique<ModifierObservation>(std::move(connection), std::move(callback));
}

}  // namespace zephlin
