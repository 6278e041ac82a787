#pragma once

#include <string>
#include <vector>

#include "Tests/Desktop/Harness/Program.h"

namespace zephlin::test {

/// The keyboard service with two virtual keyboards at its usual place, and those keyboards. This
/// class does not use the observed /usr/bin/hidutil.
class Keyboards {
 public:
  Keyboards(const std::string& folder, const Environment& environment);

  /// Plugs one in and returns its identifier.
  std::string plug() const;
  void pull(const std::string& identifier) const;

  /// The Caps Lock delay of each keyboard, "(null)" for the system's own.
  [[nodiscard]] std::vector<std::string> delays() const;
  [[nodiscard]] bool allAre(const std::string& delay) const;
  void waitUntilAllAre(const std::string& delay) const;
  void setAll(int delay) const;

 private:
  std::string ask(std::vector<std::string> arguments) const;

  Environment environment_;
  Program service_;
};

}  // namespace zephlin::test
