#pragma once

#include <string>

#include "Tests/VM/VirtualMachine.h"

namespace zephlin {

/// What typeHello types.
constexpr const char* helloEvents =
    "'KEY_CAPSLOCK 1' 'KEY_CAPSLOCK 0' 'KEY_H 1' 'KEY_H 0' 'KEY_CAPSLOCK 1' 'KEY_E 1' "
    "'KEY_CAPSLOCK 0' 'KEY_E 0' 'KEY_E 1' 'KEY_E 0'";

/// Types in a virtual machine, where a service and a judge run that begin and end with it.
class Typist {
 public:
  explicit Typist(VirtualMachine& machine);
  Typist(const Typist&) = delete;
  Typist& operator=(const Typist&) = delete;

  /// Ends the service and the judge.
  void finish();

  /// Starts the service, on its usual socket.
  void startService(const std::string& command = "zephlin-hidd");

  /// Ends the service and has it started through its socket from then on.
  void activateService(const std::string& command = "zephlin-hidd");
  void endActivation();

  /// Starts another judge with these options of XKB.
  void startJudge(const std::string& options = "");

  /// The keys, texts and locks that the judge has seen, in their order, whatever the keyboard.
  std::string seen();

  /// Waits until the judge has seen something so many times.
  void waitUntilSeen(const std::string& what, int times = 1);

  /// The name of the keyboard's event device.
  std::string nodeOf(int keyboard);

  /// Runs Zephlin and waits until what it has set is in force, on so many keyboards; what it
  /// printed.
  std::string apply(int keyboards = 1);
  std::string restore();

  /// Presses a key and releases it at once.
  void tap(int keyboard, const std::string& key);

  /// Caps Lock on, H, and then e twice, the first one while the key that switches the lock off is
  /// still held; what the judge read of it. Types on only when the keyboard's LED shows the lock,
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

  void waitForLed(int keyboard, bool lit);

  /// Waits until all that was typed on the keyboard has been seen.
  void finishTyping(int keyboard);

  /// All that the judge has read.
  std::string text();

  /// Waits until programs see so many clones.
  void waitForClones(int count);

  /// Makes a keyboard without LEDs, which can do what `abilities` says (MadeKeyboard.cpp), for
  /// the events that go to the shell's descriptor 9.
  void makeKeyboard(const std::string& abilities = "");
  void endKeyboard();

  /// Sends events from that keyboard, words of the shell such as 'KEY_A 1', as slowly as people
  /// type.
  void turnSlowly(const std::string& events);

 private:
  VirtualMachine& machine_;
  int marks_ = 0;
};

}  // namespace zephlin
