#include "Platform/Linux/Watching/X11KeyboardState.h"

#include <vector>

#include "Platform/Linux/Watching/EndableCallback.h"
#include "Platform/Linux/Watching/XkbKeyboard.h"

namespace zephlin {

namespace {

std::unique_ptr<X11Connection> connectionWithXkb() {
  auto connection = X11Connection::open();
  return connection && xkb::use(*connection) ? std::move(connection) : nullptr;
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
      if (const auto flags = xkb::changedModifierFlags(*connection_, *event)) {
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
  return xkb::currentModifierFlags(*connection_).value_or(0);
}

std::unique_ptr<Observation> listenToX11Modifiers(std::function<void(ModifierFlags)> callback) {
  auto connection = connectionWithXkb();
  if (!connection || !xkb::selectModifierChanges(*connection)) {
    return nullptr;
  }
  return std::make_unique<ModifierObservation>(std::move(connection), std::move(callback));
}

}  // namespace zephlin
