#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "Tests/Desktop/Harness/Program.h"
#include "Tests/Support/BusConnection.h"

namespace zephlin::test {

/// What a program must have in its environment to show screen readers its windows.
Environment accessible();

/// The windows of programs as a screen reader finds them (AT-SPI).
class Accessibility {
 public:
  explicit Accessibility(const BusConnection& sessionBus);

  /// The names of all that the process shows: windows, texts, buttons.
  [[nodiscard]] std::vector<std::string> namesIn(pid_t process) const;
  void waitForName(pid_t process, const std::string& name) const;
  /// Waits until there is a button with this name, and pushes it.
  void push(pid_t process, const std::string& button) const;

 private:
  struct Object {
    QString service;
    QString path;
    std::string name;
  };

  void addDescendants(const Object& parent, std::vector<Object>& found) const;
  [[nodiscard]] std::vector<Object> childrenOf(const Object& parent) const;
  [[nodiscard]] std::vector<Object> objectsIn(pid_t process) const;
  QVariantList call(const Object& object, const char* interface, const char* method,
                    const QVariantList& arguments = {}) const;

  BusConnection bus_;
};

}  // namespace zephlin::test
