#pragma once

#include <umockdev.h>

#include <memory>
#include <string>
#include <vector>

#include "Platform/Linux/Watching/EventDevices.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace zephlin::test {

/// A machine whose only devices are those that the test adds, and its udev. Needs umockdev's
/// library to be loaded first.
class MockedDevices {
 public:
  enum class Leds { None, CapsLock };

  MockedDevices();

  /// Adds a keyboard with one event device; udev says nothing of it yet. Returns the latter's path
  /// in sysfs.
  std::string addKeyboard(int number, Leds leds = Leds::CapsLock);
  /// A keyboard that nobody but root may open.
  void addForbiddenKeyboard(int number);
  /// A mouse.
  std::string addPointer(int number);
  /// A device of another subsystem.
  std::string add(const std::string& subsystem);
  /// The device reports these values and then that they belong together.
  void report(int number, EventKind kind, const std::vector<int>& values);
  /// The device goes, without a word of udev.
  void remove(int number);
  void announce(const std::string& path, const char* action) {
    umockdev_testbed_uevent(testbed_.get(), path.c_str(), action);
  }

 private:
  struct Unreference {
    void operator()(UMockdevTestbed* testbed) const { g_object_unref(testbed); }
  };

  [[nodiscard]] std::string rootFolder() const;
  [[nodiscard]] static std::string node(int number);
  std::string addEventDevice(int number, const std::string& properties);
  void answer(int number, const std::string& ioctls);

  std::unique_ptr<UMockdevTestbed, Unreference> testbed_{umockdev_testbed_new()};
  TemporaryDirectory folder_;
};

}  // namespace zephlin::test
