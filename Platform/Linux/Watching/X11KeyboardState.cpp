#include "Platform/Linux/Watching/X11KeyboardState.h"

#include <optional>
#include <vector>

#include "Platform/Linux/Watching/EndableCallback.h"

namespace zephlin {

namespace {

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

/// The flags in such an event; nothing for any other event.
std::optional<ModifierFlags> changedModifierFlags(const X11Connection& connection,
                                                  const xcb_generic_event_t& event) {
  const auto& state = reinterpret_cast<const xcb_xkb_state_notify_event_t&>(event);
  if (event.response_type != connection.extension(&xcb_xkb_id)->first_event ||
      state.xkbType != XCB_XKB_STATE_NOTIFY) {
    return std::nullopt;
  }
  return flagsOf(state.mods, state.lockedMods);
}

class ModifierObservation final : public Observation {
 public:
  ModifierObservation(std::unique_ptr<X11Connection> connection,
                      std::function<void(ModifierFlags)> callback)
      : callback_(std::move(callback)), connection_(std::move(connection)) {
    connection_->watch([this] { receive(); });
  }

 private:
  void receive() {
    std::vector<ModifierFlags> changes;
    for (const auto& event : connection_->takeEvents()) {
      if (const auto flags = changedModifierFlags(*connection_, *event)) {
        changes.push_back(*flags);
      }
    }
    callback_.callForEach(changes);
  }

  EndableCallback<ModifierFlags> callback_;
  std::unique_ptr<X11Connection> connection_;
};

}  // namespace

std::unique_ptr<X11KeyboardState> X11KeyboardState::open() {
  auto connection = connectionWithXkb();
  if (!connection) {
    return nullptr;
  }
  return std::unique_ptr<X11KeyboardState>(new X11KeyboardState(std::move(connection)));
}

ModifierFlags X11KeyboardState::modifierFlags() const {
  const auto cookie = xcb_xkb_get_state(connection_->get(), XCB_XKB_ID_USE_CORE_KBD);
  const X11Message<xcb_xkb_get_state_reply_t> state(
      xcb_xkb_get_state_reply(connection_->get(), cookie, nullptr));
  return state ? flagsOf(state->mods, state->lockedMods) : 0;
}

std::unique_ptr<Observation> listenToX11Modifiers(std::function<void(ModifierFlags)> callback) {
  auto connection = connectionWithXkb();
  if (!connection || !selectModifierChanges(*connection)) {
    return nullptr;
  }
  return std::make_unique<ModifierObservation>(std::move(connection), std::move(callback));
}

}  // namespace zephlin
