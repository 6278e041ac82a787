#pragma once

#include <gtest/gtest.h>

#include <string>

#include "Tests/VM/VirtualMachine.h"

namespace zephlin {

/// One virtual machine for all tests, with keyboard 0 plugged, a service and a judge of its own for
/// each of them.
class TypedMachine : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  static VirtualMachine& machine();

  /// Starts the service, on its usual socket.
  static void startService(const std::string& command = "zephlin-hidd");

  /// Starts another judge with these options of XKB.
  void startJudge(const std::string& options = "");

  /// The keys, texts and locks that the judge has seen, in their order, whatever the keyboard.
  static std::string seen();

  /// Waits until the judge has seen something so many times.
  static void waitUntilSeen(const std::string& what, int times = 1);

  /// The name of the keyboard's event device.
  static std::string nodeOf(int keyboard);

  /// Runs Zephlin and waits until what it has set is in force, on so many keyboards.
  static void apply(int keyboards = 1);
  static void restore();

  /// Presses a key and releases it at once.
  static void tap(int keyboard, const std::string& key);

  /// Caps Lock on, H, and then e twice, the first one while the key that switches the lock off is
  /// still held; what the judge read of it. Types on only when the keyboard's light shows the lock,
  /// as it does for people, who are slower.
  std::string typeHello(int keyboard);

  /// What the judge reads of what `type` types.
  template <typename Type>
  std::string textOf(int keyboard, const Type& type) {
    const std::string before = text();
    type();
    finishTyping(keyboard);
    return text().substr(before.size());
  }

  static void waitForLight(int keyboard, bool lit);

  /// Waits until all that was typed on the keyboard has been seen.
  void finishTyping(int keyboard);

  /// All that the judge has read.
  static std::string text();

  /// Waits until programs see so many clones.
  static void waitForClones(int count);

 private:
  int marks_ = 0;
};

}  // namespace zephlin
