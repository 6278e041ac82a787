#include "Platform/Linux/Watching/XkbKeyboard.h"

#include <algorithm>
#include <span>

// The header has a member of this name.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit

namespace zephlin::xkb {

namespace {

constexpr xcb_xkb_device_spec_t coreKeyboard = XCB_XKB_ID_USE_CORE_KBD;

ModifierFlags flags(unsigned modifiers, unsigned lockedModifiers) {
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

}  // namespace

bool use(const X11Connection& connection) {
  if (connection.extension(&xcb_xkb_id) == nullptr) {
    return false;
  }
  const auto cookie =
      xcb_xkb_use_extension(connection.get(), XCB_XKB_MAJOR_VERSION, XCB_XKB_MINOR_VERSION);
  const X11Message<xcb_xkb_use_extension_reply_t> reply(
      xcb_xkb_use_extension_reply(connection.get(), cookie, nullptr));
  return reply && reply->supported != 0;
}

std::optional<std::uint8_t> keycode(const X11Connection& connection, std::string_view keyName) {
  const auto cookie =
      xcb_xkb_get_names(connection.get(), coreKeyboard, XCB_XKB_NAME_DETAIL_KEY_NAMES);
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

bool selectModifierChanges(const X11Connection& connection) {
  constexpr std::uint16_t parts =
      XCB_XKB_STATE_PART_MODIFIER_STATE | XCB_XKB_STATE_PART_MODIFIER_LOCK;
  xcb_xkb_select_events_details_t details{};
  details.affectState = parts;
  details.stateDetails = parts;
  return connection.succeeds(xcb_xkb_select_events_aux_checked(
      connection.get(), coreKeyboard, XCB_XKB_EVENT_TYPE_STATE_NOTIFY, 0, 0, 0, 0, &details));
}

std::optional<ModifierFlags> changedModifierFlags(const X11Connection& connection,
                                                  const xcb_generic_event_t& event) {
  const auto& state = reinterpret_cast<const xcb_xkb_state_notify_event_t&>(event);
  if (event.response_type != connection.extension(&xcb_xkb_id)->first_event ||
      state.xkbType != XCB_XKB_STATE_NOTIFY) {
    return std::nullopt;
  }
  return flags(state.mods, state.lockedMods);
}

std::optional<ModifierFlags> currentModifierFlags(const X11Connection& connection) {
  const auto cookie = xcb_xkb_get_state(connection.get(), coreKeyboard);
  const X11Message<xcb_xkb_get_state_reply_t> state(
      xcb_xkb_get_state_reply(connection.get(), cookie, nullptr));
  if (!state) {
    return std::nullopt;
  }
  return flags(state->mods, state->lockedMods);
}

}  // namespace zephlin::xkb
