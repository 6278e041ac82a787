#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "Platform/EventTap.h"

namespace zephlin {

/// Quartz event taps of the login session.
class MacEventTaps final : public EventTaps {
 public:
  std::unique_ptr<Observation> listen(
      std::uint64_t mask,
      std::function<void(EventType type, ModifierFlags flags)> callback) override;
  ModifierFlags currentModifierFlags() override;
};

}  // namespace zephlin
