#pragma once

#include <chrono>

#include "Platform/Dispatch.h"

namespace zephlin {

class LinuxClock final : public Clock {
 public:
  [[nodiscard]] WallTime now() const override {
    const std::chrono::duration<double> sinceEpoch =
        std::chrono::system_clock::now().time_since_epoch();
    return {sinceEpoch.count()};
  }
};

}  // namespace zephlin
