#pragma once

#include <string>

#include "Platform/Services.h"

namespace zephlin {

class MacSystemLog final : public SystemLog {
 public:
  void log(const std::string& text) override;
};

}  // namespace zephlin
