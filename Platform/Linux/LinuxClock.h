#pragma once

#include <chrono>

#include "Platform/Dispatch.h"

namespace zephlin {

class LinuxClock final : public Clock {
 public:
  [[nodiscard]] WallTime now() const override { return std::chrono::system_clock::now(); }
};

}  // namespace zephlin
