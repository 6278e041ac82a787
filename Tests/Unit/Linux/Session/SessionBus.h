#pragma once

#include <memory>
#include <string>

#include "Tests/Support/TestProcess.h"

namespace zephlin::test {

/// A private message bus, which ends with this.
class SessionBus {
 public:
  SessionBus();

  [[nodiscard]] const std::string& address() const { return address_; }

 private:
  Pipe addressPipe_;
  std::unique_ptr<TestProcess> daemon_;
  std::string address_;
};

}  // namespace zephlin::test
