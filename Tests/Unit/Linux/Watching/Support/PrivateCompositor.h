#pragma once

#include <wayland-client.h>
#include <wayland-server.h>

#include <cstdint>
#include <list>
#include <vector>

namespace zephlin::test {

/// A Wayland compositor without a screen and one client of it, with a surface, in one thread. What
/// the compositor sends arrives when it is delivered, all at once.
class PrivateCompositor {
 public:
  static constexpr std::uint32_t lock = 1U << 1U;
  static constexpr std::uint32_t shift = 1U << 0U;

  class Seat {
   public:
    void setHasKeyboard(bool hasKeyboard);
    void enter(std::uint32_t lockedModifiers);
    void leave();
    void key(std::uint32_t time, std::uint32_t code, bool isDown);
    void modifiers(std::uint32_t depressed, std::uint32_t locked);
    /// Of the client.
    [[nodiscard]] bool hasKeyboard() const { return !keyboards_.empty(); }

   private:
    friend class PrivateCompositor;

    static void bind(wl_client* client, void* data, std::uint32_t version, std::uint32_t id);
    static void getKeyboard(wl_client* client, wl_resource* seat, std::uint32_t id);

    /// Of the client.
    wl_resource** surface_ = nullptr;
    wl_global* global_ = nullptr;
    wl_resource* resource_ = nullptr;
    std::vector<wl_resource*> keyboards_;
    std::uint32_t capabilities_ = WL_SEAT_CAPABILITY_KEYBOARD;
  };

  PrivateCompositor();
  PrivateCompositor(const PrivateCompositor&) = delete;
  PrivateCompositor& operator=(const PrivateCompositor&) = delete;
  ~PrivateCompositor();

  Seat& addSeat(std::uint32_t version = 5);
  void removeSeat(Seat& seat);

  /// The client's connection.
  wl_display* display() { return client_; }
  /// Has both sides receive what the other one has sent, until neither sends anything.
  void deliver();

 private:
  wl_display* server_;
  wl_display* client_;
  std::list<Seat> seats_;
  wl_resource* surface_ = nullptr;
  wl_registry* registry_ = nullptr;
  wl_compositor* clientsCompositor_ = nullptr;
  wl_surface* clientsSurface_ = nullptr;
};

}  // namespace zephlin::test
