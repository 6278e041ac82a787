#pragma once

#include "Platform/Dispatch.h"

namespace zephlin {

/// Core Foundation's absolute time, which is wall time since 2001.
class MacClock final : public Clock {
 public:
  [[nodiscard]] WallTime now() const override;
};

}  // namespace zephlin
