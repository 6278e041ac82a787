#include "Tests/Unit/Linux/Watching/Support/PrivateCompositor.h"

#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <stdexcept>
#include <string_view>

namespace zephlin::test {

namespace {

void destroyResource(wl_client* /*client*/, wl_resource* resource) {
  wl_resource_destroy(resource);
}

/// Remembers the client's surface, which is the compositor's data.
void createSurface(wl_client* client, wl_resource* compositor, std::uint32_t id) {
  auto** const surface = static_cast<wl_resource**>(wl_resource_get_user_data(compositor));
  *surface = wl_resource_create(client, &wl_surface_interface, 1, id);
}

void bindCompositor(wl_client* client, void* data, std::uint32_t version, std::uint32_t id) {
  static const struct wl_compositor_interface requests { createSurface, nullptr };
  wl_resource_set_implementation(
      wl_resource_create(client, &wl_compositor_interface, static_cast<int>(version), id),
      &requests, data, nullptr);
}

void bindClientsCompositor(void* data, wl_registry* registry, std::uint32_t name,
                           const char* interface, std::uint32_t /*version*/) {
  if (interface == std::string_view("wl_compositor")) {
    *static_cast<wl_compositor**>(data) =
        static_cast<wl_compositor*>(wl_registry_bind(registry, name, &wl_compositor_interface, 1));
  }
}

}  // namespace

PrivateCompositor::PrivateCompositor() : server_(wl_display_create()) {
  std::array<int, 2> sockets{};
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets.data()) != 0) {
    throw std::runtime_error("cannot make a pair of sockets");
  }
  wl_client_create(server_, sockets[0]);
  client_ = wl_display_connect_to_fd(sockets[1]);
  wl_global_create(server_, &wl_compositor_interface, 1, &surface_, bindCompositor);

  static const wl_registry_listener listener{bindClientsCompositor,
                                             [](void*, wl_registry*, std::uint32_t) {}};
  registry_ = wl_display_get_registry(client_);
  wl_registry_add_listener(registry_, &listener, &clientsCompositor_);
  deliver();
  clientsSurface_ = wl_compositor_create_surface(clientsCompositor_);
  deliver();
}

PrivateCompositor::~PrivateCompositor() {
  wl_surface_destroy(clientsSurface_);
  wl_compositor_destroy(clientsCompositor_);
  wl_registry_destroy(registry_);
  wl_display_disconnect(client_);
  wl_display_destroy_clients(server_);
  wl_display_destroy(server_);
}

PrivateCompositor::Seat& PrivateCompositor::addSeat(std::uint32_t version) {
  Seat& seat = seats_.emplace_back();
  seat.surface_ = &surface_;
  seat.global_ =
      wl_global_create(server_, &wl_seat_interface, static_cast<int>(version), &seat, Seat::bind);
  return seat;
}

void PrivateCompositor::removeSeat(Seat& seat) {
  wl_global_destroy(seat.global_);
}

void PrivateCompositor::deliver() {
  pollfd socket{.fd = wl_display_get_fd(client_), .events = POLLIN, .revents = 0};
  do {
    wl_display_flush(client_);
    wl_event_loop_dispatch(wl_display_get_event_loop(server_), 0);
    wl_display_flush_clients(server_);
    while (wl_display_prepare_read(client_) != 0) {
      wl_display_dispatch_pending(client_);
    }
    if (::poll(&socket, 1, 0) > 0) {
      wl_display_read_events(client_);
    } else {
      wl_display_cancel_read(client_);
      socket.revents = 0;
    }
  } while (wl_display_dispatch_pending(client_) > 0);
  if (wl_display_get_error(client_) != 0) {
    throw std::runtime_error("the connection has failed");
  }
}

void PrivateCompositor::Seat::bind(wl_client* client, void* data, std::uint32_t version,
                                   std::uint32_t id) {
  static const struct wl_seat_interface requests {
    .get_pointer = nullptr, .get_keyboard = getKeyboard, .get_touch = nullptr,
    .release = destroyResource,
  };
  auto& seat = *static_cast<Seat*>(data);
  seat.resource_ = wl_resource_create(client, &::wl_seat_interface, static_cast<int>(version), id);
  wl_resource_set_implementation(seat.resource_, &requests, &seat, [](wl_resource* resource) {
    static_cast<Seat*>(wl_resource_get_user_data(resource))->resource_ = nullptr;
  });
  wl_seat_send_capabilities(seat.resource_, seat.capabilities_);
}

void PrivateCompositor::Seat::getKeyboard(wl_client* client, wl_resource* resource,
                                          std::uint32_t id) {
  static const struct wl_keyboard_interface requests { .release = destroyResource };
  auto& seat = *static_cast<Seat*>(wl_resource_get_user_data(resource));
  wl_resource* const created =
      wl_resource_create(client, &::wl_keyboard_interface, wl_resource_get_version(resource), id);
  seat.keyboards_.push_back(created);
  wl_resource_set_implementation(created, &requests, &seat, [](wl_resource* keyboard) {
    std::erase(static_cast<Seat*>(wl_resource_get_user_data(keyboard))->keyboards_, keyboard);
  });
}

void PrivateCompositor::Seat::setHasKeyboard(bool hasKeyboard) {
  capabilities_ = hasKeyboard ? WL_SEAT_CAPABILITY_KEYBOARD : 0;
  if (resource_ != nullptr) {
    wl_seat_send_capabilities(resource_, capabilities_);
  }
}

void PrivateCompositor::Seat::enter(std::uint32_t lockedModifiers) {
  wl_array keys{};
  for (wl_resource* const keyboard : keyboards_) {
    wl_keyboard_send_enter(keyboard, 1, *surface_, &keys);
  }
  modifiers(0, lockedModifiers);
}

void PrivateCompositor::Seat::leave() {
  for (wl_resource* const keyboard : keyboards_) {
    wl_keyboard_send_leave(keyboard, 2, *surface_);
  }
}

void PrivateCompositor::Seat::key(std::uint32_t time, std::uint32_t code, bool isDown) {
  for (wl_resource* const keyboard : keyboards_) {
    wl_keyboard_send_key(keyboard, 3, time, code,
                         isDown ? WL_KEYBOARD_KEY_STATE_PRESSED : WL_KEYBOARD_KEY_STATE_RELEASED);
  }
}

void PrivateCompositor::Seat::modifiers(std::uint32_t depressed, std::uint32_t locked) {
  for (wl_resource* const keyboard : keyboards_) {
    wl_keyboard_send_modifiers(keyboard, 4, depressed, 0, locked, 0);
  }
}

}  // namespace zephlin::test
