#pragma once

#include <wayland-client-protocol.h>

#include <QLibrary>

namespace zephlin {

/// What is used of libwayland-client. It is not linked, so that X11 sessions do not load it.
class WaylandLibrary {
 public:
  WaylandLibrary()
      : library_("wayland-client", 0),
        marshal(resolve<decltype(marshal)>("wl_proxy_marshal_array_flags")),
        addListener(resolve<decltype(addListener)>("wl_proxy_add_listener")),
        destroy(resolve<decltype(destroy)>("wl_proxy_destroy")),
        registryInterface(resolve<decltype(registryInterface)>("wl_registry_interface")),
        seatInterface(resolve<decltype(seatInterface)>("wl_seat_interface")),
        keyboardInterface(resolve<decltype(keyboardInterface)>("wl_keyboard_interface")) {}

 private:
  template <typename Symbol>
  Symbol resolve(const char* name) {
    return reinterpret_cast<Symbol>(library_.resolve(name));
  }

  QLibrary library_;

 public:
  /// Null before version 1.20, which has all the others.
  decltype(&::wl_proxy_marshal_array_flags) const marshal;
  decltype(&::wl_proxy_add_listener) const addListener;
  decltype(&::wl_proxy_destroy) const destroy;
  const wl_interface* const registryInterface;
  const wl_interface* const seatInterface;
  const wl_interface* const keyboardInterface;
};

inline const WaylandLibrary& wayland() {
  static const WaylandLibrary library;
  return library;
}

}  // namespace zephlin
