#pragma once

#include <string>
#include <vector>

#include "Platform/Services.h"

namespace zephlin {

class SimulatedSystemLog final : public SystemLog {
 public:
  void log(const std::string& text) override { entries_.push_back(text); }

  [[nodiscard]] const std::vector<std::string>& entries() const { return entries_; }
  void clear() { entries_.clear(); }

 private:
  std::vector<std::string> entries_;
};

}  // namespace zephlin
