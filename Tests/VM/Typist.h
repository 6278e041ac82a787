#pragma once

#include <string>

#include "Tests/VM/VirtualMachine.h"

namespace zephlin {

/// What typeHello types.
constexpr const char* helloEvents =
    "'KEY_CAPSLOCK 1' 'KEY_CAPSLOCK 0' 'KEY_H 1' 'KEY_H 0' 'KEY_CAPSLOCK 1' 'KEY_E 1' "
    "'KEY_CAPSLOCK 0' 'KEY_E 0' 'KEY_E 1' 'KEY_E 0'";

/// Types in a virtual machine, where a service and a judge run that begin and end with it. `judge`
/// is the command for what prints what it reads, as CapsLockJudge does.
class Typist {
 public:
  explicit Typist(VirtualMachine& machine, std::string judge = "CapsLockJudge")
      : machine_(machine), judge_(std::move(judge)) {
    forgetProperties();
    startService();
    startJudge();
  }

  Typist(const Typist&) = delete;
  Typist& operator=(const Typist&) = delete;

  /// Ends the service and the judge.
  void finish() {
    machine_.run("kill $service $judge; wait $service $judge");
    machine_.waitUntil("[ ! -e /run/zephlin/hidd.sock ]");
  }

  /// What a service that has ended leaves to the next one.
  void forgetProperties() { machine_.output("rm -f /run/zephlin/hidd.sock.state"); }

  /// Starts the service, on its usual socket.
  void startService(const std::string& command = "zephlin-hidd") {
    machine_.output("rm -f /tmp/service.log; " + command + " 2>/tmp/service.log & service=$!");
    machine_.waitUntil("grep -q ready /tmp/service.log");
  }

  /// The service's answers may be a quarter of a second old.
  void outwaitOldAnswers() { machine_.output("sleep 0.3"); }

  /// Ends the service and has it started through its socket from then on.
  void activateService(const std::string& command = "zephlin-hidd") {
    machine_.run("kill $service; wait $service");
    machine_.output(
        "while :; do rm -f /run/zephlin/hidd.sock; systemd-socket-activate "
        "-l /run/zephlin/hidd.sock " +
        command + "; done >/tmp/service.log 2>&1 & keeper=$!");
    machine_.waitUntil("[ -S /run/zephlin/hidd.sock ]");
  }

  void endActivation() {
    machine_.run("kill -9 $keeper; killall zephlin-hidd; wait $keeper");
    machine_.waitUntil("! pidof zephlin-hidd");
    machine_.output("rm /run/zephlin/hidd.sock");
  }

  /// Starts another judge with these options of XKB.
  void startJudge(const std::string& options = "") {
    machine_.run("[ -z \"$judge\" ] || { kill $judge; wait $judge; }");
    machine_.output("rm -f /tmp/judge.log; " + judge_ + ' ' + options +
                    " >/tmp/judge.log 2>&1 9>&- & judge=$!");
    machine_.waitUntil("grep -q ready /tmp/judge.log");
    marks_ = 0;
  }

  /// The keys, texts and locks that the judge has seen, in their order, whatever the keyboard.
  std::string seen() {
    return machine_.output(R"(sed -n 's/^[^ ]* //; s/event[0-9]* //; /^[-+r]/!p' /tmp/judge.log)");
  }

  /// Waits until the judge has seen something so many times.
  void waitUntilSeen(const std::string& what, int times = 1) {
    machine_.waitUntil("[ $(grep -c '" + what + "' /tmp/judge.log) -ge " + std::to_string(times) +
                       " ]");
  }

  /// The name of the keyboard's event device.
  std::string nodeOf(int keyboard) {
    const std::string isIt = keyboard == VirtualMachine::ps2Keyboard
                                 ? "grep -q ^isa0060/serio0 $each/device/phys"
                                 : "grep -q K" + std::to_string(keyboard) + " $each/device/uniq";
    const std::string name = machine_.output("cd /sys/class/input; for each in event*; do if " +
                                             isIt + "; then echo $each; fi; done");
    return name.substr(0, name.find('\n'));
  }

  /// Runs Zephlin and waits until what it has set is in force, on so many keyboards; what it
  /// printed.
  std::string apply(int keyboards = 1) {
    const std::string printed = machine_.output("Zephlin apply");
    waitForStates(keyboards, "(watched|grabbed)");
    return printed;
  }

  std::string restore() {
    const std::string printed = machine_.output("Zephlin restore");
    waitForStates(0, "(watched|grabbed)");
    return printed;
  }

  /// Sets a delay on every keyboard; one above zero wants a clone.
  void setDelay(int milliseconds) {
    machine_.output("hidutil property --set '{\"CapsLockDelayOverride\":" +
                    std::to_string(milliseconds) + "}'");
  }

  /// Presses a key and releases it at once.
  void tap(int keyboard, const std::string& key) {
    machine_.press(keyboard, key);
    machine_.release(keyboard, key);
  }

  /// Caps Lock on, H, and then e twice, the first one while the key that switches the lock off is
  /// still held; what the judge read of it. Types on only when the keyboard's LED shows the lock,
  /// as it does for people, who are slower.
  std::string typeHello(int keyboard) {
    return textOf(keyboard, [&] {
      tap(keyboard, "caps_lock");
      waitForLed(keyboard, true);
      tap(keyboard, "h");
      machine_.press(keyboard, "caps_lock");
      machine_.press(keyboard, "e");
      machine_.release(keyboard, "caps_lock");
      machine_.release(keyboard, "e");
      tap(keyboard, "e");
      waitForLed(keyboard, false);
    });
  }

  /// The same on the keyboard that is made.
  std::string typeHelloOnMadeKeyboard() {
    return textOf(0, [this] { turnSlowly(helloEvents); });
  }

  /// What the judge reads of what `type` types.
  template <typename Type>
  std::string textOf(int keyboard, const Type& type) {
    const std::string before = text();
    type();
    finishTyping(keyboard);
    return text().substr(before.size());
  }

  void waitForLed(int keyboard, bool lit) {
    const std::string node = nodeOf(keyboard);
    machine_.waitUntil("grep -q " + std::to_string(lit ? 1 : 0) + " /sys/class/input/" + node +
                       "/device/*::capslock/brightness");
  }

  /// Waits until all that was typed on the keyboard has been seen.
  void finishTyping(int keyboard) {
    tap(keyboard, "f12");
    waitUntilSeen("KEY_F12 0", ++marks_);
  }

  /// All that the judge has read.
  std::string text() {
    const std::string text =
        machine_.output("sed -n 's/.* text //p' /tmp/judge.log | tr -d '\\n'; echo");
    return text.substr(0, text.size() - 1);
  }

  /// Waits until `hidutil list` says so, an extended regular expression, of as many keyboards. The
  /// judge then reads the clones that have come or gone.
  void waitForStates(int count, const std::string& state) {
    machine_.waitUntil("[ $(hidutil list | grep -c -E '   " + state +
                       "   ') = " + std::to_string(count) + " ]");
    machine_.output("udevadm settle");
  }

  /// Waits until programs see so many clones.
  void waitForClones(int count) {
    machine_.waitUntil("[ $(cat /sys/class/input/input*/phys | grep -c ^zephlin-hidd/) = " +
                       std::to_string(count) + " ]");
    machine_.output("udevadm settle; sleep 1");
  }

  /// Makes a keyboard without LEDs, which can do what `abilities` says (MadeKeyboard.cpp), for
  /// the events that go to the shell's descriptor 9.
  void makeKeyboard(const std::string& abilities = "") {
    machine_.output("rm -f /tmp/events; mkfifo /tmp/events; MadeKeyboard " + abilities +
                    " </tmp/events >/tmp/made.log & exec 9>/tmp/events");
    machine_.waitUntil("hidutil list | grep -q 'Made Keyboard'");
  }

  void endKeyboard() {
    machine_.output("exec 9>&-");
    machine_.waitUntil("! hidutil list | grep -q 'Made Keyboard'");
  }

  /// Sends one event from that keyboard, such as "KEY_A 1".
  void turnMade(const std::string& event) { machine_.output("echo " + event + " >&9"); }

  /// Sends events from that keyboard, words of the shell such as 'KEY_A 1', as slowly as people
  /// type.
  void turnSlowly(const std::string& events) {
    machine_.output("for each in " + events + "; do echo $each; sleep 0.2; done >&9");
  }

 private:
  VirtualMachine& machine_;
  std::string judge_;
  int marks_ = 0;
};

}  // namespace zephlin
