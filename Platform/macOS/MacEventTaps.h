#pragma once

#include <functional>
#include <memory>

#include "Platform/Keyboard.h"

namespace zephlin {

/// Quartz event taps of the login session.
class MacEventTaps final : public EventTaps {
 public:
  std::unique_ptr<Observation> listenToFlagsChanged(
      std::function<void(ModifierFlags flags)> callback) override;
  ModifierFlags currentModifierFlags() override;
};

}  // namespace zephlin
