#pragma once

#include <string>

#include "Tests/Support/TemporaryDirectory.h"

namespace zephlin::test {

/// The built application in a folder Zephlin.app of its own.
class Bundle {
 public:
  Bundle();

  [[nodiscard]] std::string program() const { return folder_.file("Zephlin.app/Zephlin"); }

 private:
  TemporaryDirectory folder_;
};

}  // namespace zephlin::test
