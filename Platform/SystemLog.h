#pragma once

#include <string>

namespace zephlin {

class SystemLog {
 public:
  virtual ~SystemLog() = default;
  /// Writes one entry. Any thread; never throws.
  virtual void log(const std::string& text) = 0;
};

}  // namespace zephlin
