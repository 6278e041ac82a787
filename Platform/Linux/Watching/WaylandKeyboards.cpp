#include "Platform/Linux/Watching/WaylandKeyboards.h"

#include <linux/input-event-codes.h>
#include <qpa/qplatformnativeinterface.h>
#include <unistd.h>

#include <QGuiApplication>
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "Base/FileDescriptor.h"
#include "Platform/Linux/Watching/EndableCallback.h"
#include "Platform/Linux/Watching/ServerTime.h"
#include "Platform/Linux/Watching/WaylandLibrary.h"

namespace zephlin {

namespace {

using SteadyClock = std::chrono::steady_clock;

/// The modifier Lock: the real modifiers are the first eight of every keymap, in X11's order.
constexpr std::uint32_t lockModifier = 1U << 1U;
/// Its keyboards, too, can be released. In all compositors since 2015.
constexpr std::uint32_t seatVersion = 5;

/// Destroys an object of the protocol by its own request, or on this side only.
struct ProxyDeleter {
  std::optional<std::uint32_t> request;

  void operator()(wl_proxy* proxy) const {
    if (request) {
      wayland().marshal(proxy, *request, nullptr, seatVersion, WL_MARSHAL_FLAG_DESTROY, nullptr);
    } else {
      wayland().destroy(proxy);
    }
  }
};
using Proxy = std::unique_ptr<wl_proxy, ProxyDeleter>;

template <typename Listener>
void listen(const Proxy& proxy, const Listener& listener, void* data) {
  auto* const functions = reinterpret_cast<void (**)()>(const_cast<Listener*>(&listener));
  wayland().addListener(proxy.get(), functions, data);
}

/// The keyboard of one seat. Events that arrive at once belong together; Qt's loop comes round
/// after the last of them.
class Keyboard {
 public:
  using Callback = EndableCallback<const WaylandKeyboards::Event&>;

  Keyboard(wl_proxy* proxy, const Callback& callback)
      : callback_(callback), proxy_(proxy, {WL_KEYBOARD_RELEASE}) {
    listen(proxy_, listener, this);
  }
  Keyboard(const Keyboard&) = delete;
  Keyboard& operator=(const Keyboard&) = delete;
  ~Keyboard() = default;

  [[nodiscard]] bool hasFocus() const { return hasFocus_; }

 private:
  static const wl_keyboard_listener listener;

  void leave();
  void key(std::uint32_t time, std::uint32_t code, bool isDown);
  void modifiers(bool isLocked);
  /// Calls endBatch() after everything that arrived together.
  void endBatchSoon();
  void endBatch();

  /// A call may destroy this object, so it is the last thing that a function does.
  const Callback& callback_;
  Proxy proxy_;
  bool hasFocus_ = false;
  /// Absent until the compositor has reported it to the window that has got the focus.
  std::optional<bool> isLocked_;
  /// The last event of any key; before the first, when this began.
  SteadyClock::time_point keyArrival_ = SteadyClock::now();
  EventTime keyTime_ = keyArrival_.time_since_epoch();
  bool batchHasKey_ = false;
  /// They wait for the end of the batch, as another observer of the same key may get it after this
  /// one.
  std::vector<ModifierFlags> changesBeforeKey_;
  QObject context_;
};

const wl_keyboard_listener Keyboard::listener{
    .keymap = [](void*, wl_keyboard*, std::uint32_t, std::int32_t descriptor,
                 std::uint32_t) { const FileDescriptor unused(descriptor); },
    .enter = [](void* data, wl_keyboard*, std::uint32_t, wl_surface*,
                wl_array*) { static_cast<Keyboard*>(data)->hasFocus_ = true; },
    .leave = [](void* data, wl_keyboard*, std::uint32_t,
                wl_surface*) { static_cast<Keyboard*>(data)->leave(); },
    .key =
        [](void* data, wl_keyboard*, std::uint32_t, std::uint32_t time, std::uint32_t code,
           std::uint32_t state) {
          static_cast<Keyboard*>(data)->key(time, code, state == WL_KEYBOARD_KEY_STATE_PRESSED);
        },
    .modifiers =
        [](void* data, wl_keyboard*, std::uint32_t, std::uint32_t, std::uint32_t,
           std::uint32_t locked, std::uint32_t) {
          static_cast<Keyboard*>(data)->modifiers((locked & lockModifier) != 0);
        },
    .repeat_info = [](void*, wl_keyboard*, std::int32_t, std::int32_t) {},
};

void Keyboard::leave() {
  hasFocus_ = false;
  isLocked_.reset();
  changesBeforeKey_.clear();
}

void Keyboard::key(std::uint32_t time, std::uint32_t code, bool isDown) {
  keyTime_ = serverTime(time);
  keyArrival_ = SteadyClock::now();
  batchHasKey_ = true;
  endBatchSoon();
  if (code == KEY_CAPSLOCK) {
    callback_.call(KeyEvent{isDown, keyTime_});
  }
}

void Keyboard::modifiers(bool isLocked) {
  const ModifierFlags flags = isLocked ? modifierCapsLock : 0;
  const std::optional<bool> wasLocked = std::exchange(isLocked_, isLocked);
  if (!wasLocked) {
    callback_.call(FlagsEvent{flags, std::nullopt});
  } else if (*wasLocked == isLocked) {
    return;
  } else if (batchHasKey_) {
    callback_.call(FlagsEvent{flags, keyTime_});
  } else {
    changesBeforeKey_.push_back(flags);
    endBatchSoon();
  }
}

void Keyboard::endBatchSoon() {
  QMetaObject::invokeMethod(
      &context_, [this] { endBatch(); }, Qt::QueuedConnection);
}

void Keyboard::endBatch() {
  // A change without a key is as much later than the last key as it arrived later.
  const EventTime time =
      batchHasKey_ ? keyTime_ : EventTime(keyTime_ + (SteadyClock::now() - keyArrival_));
  batchHasKey_ = false;
  std::vector<WaylandKeyboards::Event> changes;
  for (const ModifierFlags flags : std::exchange(changesBeforeKey_, {})) {
    changes.emplace_back(FlagsEvent{flags, time});
  }
  callback_.callForEach(changes);
}

class Seat {
 public:
  Seat(wl_proxy* proxy, const Keyboard::Callback& callback)
      : callback_(callback), proxy_(proxy, {WL_SEAT_RELEASE}) {
    listen(proxy_, listener, this);
  }
  Seat(const Seat&) = delete;
  Seat& operator=(const Seat&) = delete;
  ~Seat() = default;

  [[nodiscard]] bool hasFocus() const { return keyboard_ && keyboard_->hasFocus(); }

 private:
  static const wl_seat_listener listener;

  void setHasKeyboard(bool hasKeyboard);

  const Keyboard::Callback& callback_;
  Proxy proxy_;
  std::unique_ptr<Keyboard> keyboard_;
};

const wl_seat_listener Seat::listener{
    .capabilities =
        [](void* data, wl_seat*, std::uint32_t capabilities) {
          static_cast<Seat*>(data)->setHasKeyboard((capabilities & WL_SEAT_CAPABILITY_KEYBOARD) !=
                                                   0);
        },
    .name = [](void*, wl_seat*, const char*) {},
};

void Seat::setHasKeyboard(bool hasKeyboard) {
  if (!hasKeyboard) {
    keyboard_.reset();
  } else if (!keyboard_) {
    std::array<wl_argument, 1> arguments{};
    keyboard_ = std::make_unique<Keyboard>(
        wayland().marshal(proxy_.get(), WL_SEAT_GET_KEYBOARD, wayland().keyboardInterface,
                          seatVersion, 0, arguments.data()),
        callback_);
  }
}

class Seats final : public WaylandKeyboards {
 public:
  Seats(wl_display* display, std::function<void(const Event&)> callback)
      : callback_(std::move(callback)), registry_(registryOf(display)) {
    listen(registry_, listener, this);
  }

  [[nodiscard]] bool hasFocus() const override {
    return std::any_of(seats_.begin(), seats_.end(),
                       [](const auto& each) { return each.second->hasFocus(); });
  }

 private:
  static const wl_registry_listener listener;

  static Proxy registryOf(wl_display* display) {
    std::array<wl_argument, 1> arguments{};
    return {wayland().marshal(reinterpret_cast<wl_proxy*>(display), WL_DISPLAY_GET_REGISTRY,
                              wayland().registryInterface, 1, 0, arguments.data()),
            {}};
  }
  void add(std::uint32_t name);

  Keyboard::Callback callback_;
  Proxy registry_;
  std::map<std::uint32_t, std::unique_ptr<Seat>> seats_;
};

const wl_registry_listener Seats::listener{
    .global =
        [](void* data, wl_registry*, std::uint32_t name, const char* interface,
           std::uint32_t version) {
          if (interface == std::string_view("wl_seat") && version >= seatVersion) {
            static_cast<Seats*>(data)->add(name);
          }
        },
    .global_remove = [](void* data, wl_registry*,
                        std::uint32_t name) { static_cast<Seats*>(data)->seats_.erase(name); },
};

void Seats::add(std::uint32_t name) {
  std::array<wl_argument, 4> arguments{};
  arguments[0].u = name;
  arguments[1].s = "wl_seat";
  arguments[2].u = seatVersion;
  seats_[name] = std::make_unique<Seat>(
      wayland().marshal(registry_.get(), WL_REGISTRY_BIND, wayland().seatInterface, seatVersion, 0,
                        arguments.data()),
      callback_);
}

}  // namespace

wl_display* waylandDisplay() {
  auto* const native = QGuiApplication::platformNativeInterface();
  return native == nullptr
             ? nullptr
             : static_cast<wl_display*>(native->nativeResourceForIntegration("wl_display"));
}

std::unique_ptr<WaylandKeyboards> WaylandKeyboards::open(
    wl_display* display, std::function<void(const Event&)> callback) {
  if (display == nullptr || wayland().marshal == nullptr) {
    return nullptr;
  }
  return std::make_unique<Seats>(display, std::move(callback));
}

}  // namespace zephlin
