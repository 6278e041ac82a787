#pragma once

#include <string>
#include <vector>

#include "Platform/Services.h"

namespace zephlin::test {

struct RecordingLog final : SystemLog {
  void log(const std::string& text) override { entries.push_back(text); }

  std::vector<std::string> entries;
};

}  // namespace zephlin::test
