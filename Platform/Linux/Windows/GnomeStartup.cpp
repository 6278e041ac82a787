#include "Platform/Linux/Windows/GnomeStartup.h"

#include <QCoreApplication>
#include <array>
#include <memory>
#include <string_view>
#include <utility>

#include "Platform/Linux/Watching/WaylandKeyboards.h"
#include "Platform/Linux/Watching/WaylandLibrary.h"

namespace zephlin {

namespace {

// The first version of gtk_shell1, of which one request is used.
constexpr std::uint32_t version = 1;
constexpr std::uint32_t setStartupId = 1;
std::array<const wl_interface*, 2> noTypes{};
const std::array requests{wl_message{"get_gtk_surface", "no", noTypes.data()},
                          wl_message{"set_startup_id", "?s", noTypes.data()}};
const std::array events{wl_message{"capabilities", "u", noTypes.data()}};
const wl_interface shellInterface{"gtk_shell1",    version,       requests.size(),
                                  requests.data(), events.size(), events.data()};

struct ProxyDeleter {
  void operator()(wl_proxy* proxy) const { wayland().destroy(proxy); }
};
using Proxy = std::unique_ptr<wl_proxy, ProxyDeleter>;

/// GNOME Shell, as soon as the compositor has said that it is it.
class GnomeShell {
 public:
  explicit GnomeShell(wl_display* display) {
    std::array<wl_argument, 1> arguments{};
    registry_.reset(wayland().marshal(reinterpret_cast<wl_proxy*>(display), WL_DISPLAY_GET_REGISTRY,
                                      wayland().registryInterface, version, 0, arguments.data()));
    auto* const functions =
        reinterpret_cast<void (**)()>(const_cast<wl_registry_listener*>(&listener));
    wayland().addListener(registry_.get(), functions, this);
  }
  GnomeShell(const GnomeShell&) = delete;
  GnomeShell& operator=(const GnomeShell&) = delete;
  ~GnomeShell() = default;

  void endStartup(const QByteArray& token) {
    waiting_ = token;
    send();
  }

 private:
  static const wl_registry_listener listener;

  void bind(std::uint32_t name) {
    std::array<wl_argument, 4> arguments{};
    arguments[0].u = name;
    arguments[1].s = shellInterface.name;
    arguments[2].u = version;
    shell_.reset(wayland().marshal(registry_.get(), WL_REGISTRY_BIND, &shellInterface, version, 0,
                                   arguments.data()));
    send();
  }

  void send() {
    if (shell_ && !waiting_.isEmpty()) {
      const QByteArray token = std::exchange(waiting_, {});
      std::array<wl_argument, 1> arguments{};
      arguments[0].s = token.constData();
      wayland().marshal(shell_.get(), setStartupId, nullptr, version, 0, arguments.data());
    }
  }

  Proxy registry_;
  Proxy shell_;
  QByteArray waiting_;
};

const wl_registry_listener GnomeShell::listener{
    .global =
        [](void* data, wl_registry*, std::uint32_t name, const char* interface, std::uint32_t) {
          if (interface == std::string_view(shellInterface.name)) {
            static_cast<GnomeShell*>(data)->bind(name);
          }
        },
    .global_remove = [](void*, wl_registry*, std::uint32_t) {},
};

std::unique_ptr<GnomeShell>& gnomeShell() {
  static std::unique_ptr<GnomeShell> shell;
  return shell;
}

}  // namespace

void endGnomeStartup(const QByteArray& activationToken) {
  if (!gnomeShell()) {
    wl_display* const display = waylandDisplay();
    if (display == nullptr || wayland().marshal == nullptr) {
      return;
    }
    gnomeShell() = std::make_unique<GnomeShell>(display);
    // Before Qt closes the connection.
    qAddPostRoutine([] { gnomeShell().reset(); });
  }
  gnomeShell()->endStartup(activationToken);
}

}  // namespace zephlin
