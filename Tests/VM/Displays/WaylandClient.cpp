// A window under a Wayland compositor that prints the text that programs get from its keyboard, in
// CapsLockJudge's form. It ends by a signal.

#include <sys/mman.h>
#include <unistd.h>
#include <wayland-client.h>

#include <cstdlib>
#include <string_view>

#include "Tests/VM/Displays/PrintedKeys.h"
#include "xdg-shell-client-protocol.h"

namespace zephlin {
namespace {

constexpr int sideLength = 64;

/// What does nothing, for the listeners' other events.
template <typename... Arguments>
void ignore(void*, Arguments...) {}

class Window {
 public:
  void run() {
    display_ = wl_display_connect(nullptr);
    if (display_ == nullptr) {
      print("there is no compositor");
      std::exit(1);
    }
    static constexpr wl_registry_listener registryListener{
        [](void* window, wl_registry* registry, std::uint32_t name, const char* interface,
           std::uint32_t) { static_cast<Window*>(window)->bind(registry, name, interface); },
        ignore};
    wl_registry_add_listener(wl_display_get_registry(display_), &registryListener, this);
    wl_display_roundtrip(display_);
    show();
    while (wl_display_dispatch(display_) >= 0) {
    }
  }

 private:
  void bind(wl_registry* registry, std::uint32_t name, std::string_view interface) {
    const auto bound = [&](const wl_interface& type) {
      return wl_registry_bind(registry, name, &type, 1);
    };
    if (interface == wl_compositor_interface.name) {
      compositor_ = static_cast<wl_compositor*>(bound(wl_compositor_interface));
    } else if (interface == wl_shm_interface.name) {
      memory_ = static_cast<wl_shm*>(bound(wl_shm_interface));
    } else if (interface == xdg_wm_base_interface.name) {
      shell_ = static_cast<xdg_wm_base*>(bound(xdg_wm_base_interface));
    } else if (interface == wl_seat_interface.name) {
      static constexpr wl_seat_listener listener{
          [](void* window, wl_seat* seat, std::uint32_t capabilities) {
            static_cast<Window*>(window)->listen(seat, capabilities);
          },
          ignore};
      wl_seat_add_listener(static_cast<wl_seat*>(bound(wl_seat_interface)), &listener, this);
    }
  }

  void show() {
    static constexpr xdg_wm_base_listener shellListener{
        [](void*, xdg_wm_base* shell, std::uint32_t serial) { xdg_wm_base_pong(shell, serial); }};
    static constexpr xdg_surface_listener surfaceListener{
        [](void* window, xdg_surface* surface, std::uint32_t serial) {
          xdg_surface_ack_configure(surface, serial);
          static_cast<Window*>(window)->draw();
        }};
    static constexpr xdg_toplevel_listener toplevelListener{ignore, ignore, ignore, ignore};
    xdg_wm_base_add_listener(shell_, &shellListener, this);
    surface_ = wl_compositor_create_surface(compositor_);
    xdg_surface* const window = xdg_wm_base_get_xdg_surface(shell_, surface_);
    xdg_surface_add_listener(window, &surfaceListener, this);
    xdg_toplevel_add_listener(xdg_surface_get_toplevel(window), &toplevelListener, this);
    wl_surface_commit(surface_);
  }

  void draw() {
    constexpr int rowSize = sideLength * 4;
    constexpr int size = rowSize * sideLength;
    const int descriptor = ::memfd_create("window", MFD_CLOEXEC);
    if (::ftruncate(descriptor, size) != 0) {
      print("there is no memory for the window");
      std::exit(1);
    }
    wl_shm_pool* const pool = wl_shm_create_pool(memory_, descriptor, size);
    wl_surface_attach(
        surface_,
        wl_shm_pool_create_buffer(pool, 0, sideLength, sideLength, rowSize, WL_SHM_FORMAT_XRGB8888),
        0, 0);
    wl_surface_commit(surface_);
    wl_shm_pool_destroy(pool);
    ::close(descriptor);
  }

  void listen(wl_seat* seat, std::uint32_t capabilities) {
    if ((capabilities & WL_SEAT_CAPABILITY_KEYBOARD) == 0 || isListening_) {
      return;
    }
    isListening_ = true;
    static constexpr wl_keyboard_listener listener{
        [](void* window, wl_keyboard*, std::uint32_t, int descriptor, std::uint32_t size) {
          static_cast<Window*>(window)->use(descriptor, size);
        },
        [](void*, wl_keyboard*, std::uint32_t, wl_surface*, wl_array*) { print("ready"); },
        ignore,
        [](void* window, wl_keyboard*, std::uint32_t, std::uint32_t, std::uint32_t code,
           std::uint32_t state) {
          static_cast<Window*>(window)->key(code, state == WL_KEYBOARD_KEY_STATE_PRESSED);
        },
        [](void* window, wl_keyboard*, std::uint32_t, std::uint32_t pressed, std::uint32_t latched,
           std::uint32_t locked, std::uint32_t group) {
          xkb_state_update_mask(static_cast<Window*>(window)->state_, pressed, latched, locked, 0,
                                0, group);
        },
        ignore};
    wl_keyboard_add_listener(wl_seat_get_keyboard(seat), &listener, this);
  }

  /// Takes the compositor's keymap.
  void use(int descriptor, std::uint32_t size) {
    void* const text = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0);
    xkb_keymap* const keymap =
        xkb_keymap_new_from_string(xkb_, static_cast<const char*>(text), XKB_KEYMAP_FORMAT_TEXT_V1,
                                   XKB_KEYMAP_COMPILE_NO_FLAGS);
    ::munmap(text, size);
    ::close(descriptor);
    xkb_state_unref(state_);
    state_ = xkb_state_new(keymap);
    xkb_keymap_unref(keymap);
  }

  void key(std::uint32_t code, bool isDown) {
    printKey(code, isDown);
    if (isDown) {
      std::array<char, 64> name{};
      std::array<char, 16> text{};
      xkb_keysym_get_name(xkb_state_key_get_one_sym(state_, code + evdevOffset), name.data(),
                          name.size());
      xkb_state_key_get_utf8(state_, code + evdevOffset, text.data(), text.size());
      printMeaning(name.data(), text.data());
    }
  }

  wl_display* display_ = nullptr;
  wl_compositor* compositor_ = nullptr;
  wl_shm* memory_ = nullptr;
  xdg_wm_base* shell_ = nullptr;
  wl_surface* surface_ = nullptr;
  bool isListening_ = false;
  xkb_context* xkb_ = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
  xkb_state* state_ = nullptr;
};

}  // namespace
}  // namespace zephlin

int main() {
  zephlin::Window().run();
}
