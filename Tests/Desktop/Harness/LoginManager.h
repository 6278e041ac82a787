#pragma once

#include "Tests/Desktop/Harness/PrivateBus.h"

namespace zephlin::test {

/// An org.freedesktop.login1 on a private system bus that says what it is told to.
class LoginManager {
 public:
  LoginManager(PrivateBus& systemBus, const std::string& folder, const Environment& environment);

  /// Announces that the machine is about to sleep, or has woken.
  void prepareForSleep(bool begins);

 private:
  PrivateBus& bus_;
  Program mock_;
};

}  // namespace zephlin::test
