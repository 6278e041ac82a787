#pragma once

namespace zephlin {

/// Something that is observed. Destroying it ends the calls, even from within one.
class Observation {
 public:
  virtual ~Observation() = default;
};

}  // namespace zephlin
