#include "Tests/VM/Typist.h"

namespace zephlin {

Typist::Typist(VirtualMachine& machine) : machine_(machine) {
  startService();
  startJudge();
}

void Typist::finish() {
  machine_.run("kill $service $judge; wait $service $judge");
  machine_.waitUntil("[ ! -e /run/zephlin/hidd.sock ]");
}

void Typist::startService(const std::string& command) {
  machine_.output(command + " 2>/tmp/service.log & service=$!");
  machine_.waitUntil("grep -q ready /tmp/service.log");
}

void Typist::activateService(const std::string& command) {
  machine_.run("kill $service; wait $service");
  machine_.output(
      "while :; do rm -f /run/zephlin/hidd.sock; systemd-socket-activate "
      "-l /run/zephlin/hidd.sock " +
      command + "; done >/tmp/service.log 2>&1 & keeper=$!");
  machine_.waitUntil("[ -S /run/zephlin/hidd.sock ]");
}

void Typist::endActivation() {
  machine_.run("kill -9 $keeper; killall zephlin-hidd; wait $keeper");
  waitForClones(0);
  machine_.output("rm /run/zephlin/hidd.sock");
}

void Typist::startJudge(const std::string& options) {
  machine_.run("[ -z \"$judge\" ] || { kill $judge; wait $judge; }");
  machine_.output("CapsLockJudge " + options + " >/tmp/judge.log 2>&1 9>&- & judge=$!");
  machine_.waitUntil("grep -q ready /tmp/judge.log");
  marks_ = 0;
}

std::string Typist::seen() {
  return machine_.output(R"(sed -n 's/^[^ ]* //; s/event[0-9]* //; /^[-+r]/!p' /tmp/judge.log)");
}

void Typist::waitUntilSeen(const std::string& what, int times) {
  machine_.waitUntil("[ $(grep -c '" + what + "' /tmp/judge.log) -ge " + std::to_string(times) +
                     " ]");
}

std::string Typist::nodeOf(int keyboard) {
  const std::string name =
      machine_.output("cd /sys/class/input; for each in event*; do if grep -q K" +
                      std::to_string(keyboard) + " $each/device/uniq; then echo $each; fi; done");
  return name.substr(0, name.find('\n'));
}

std::string Typist::apply(int keyboards) {
  const std::string printed = machine_.output("Zephlin apply");
  waitForClones(keyboards);
  return printed;
}

std::string Typist::restore() {
  const std::string printed = machine_.output("Zephlin restore");
  waitForClones(0);
  return printed;
}

void Typist::tap(int keyboard, const std::string& key) {
  machine_.press(keyboard, key);
  machine_.release(keyboard, key);
}

std::string Typist::typeHello(int keyboard) {
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

void Typist::waitForLed(int keyboard, bool lit) {
  const std::string node = nodeOf(keyboard);
  machine_.waitUntil("grep -q " + std::to_string(lit ? 1 : 0) + " /sys/class/input/" + node +
                     "/device/*::capslock/brightness");
}

void Typist::finishTyping(int keyboard) {
  tap(keyboard, "f12");
  waitUntilSeen("KEY_F12 0", ++marks_);
}

std::string Typist::text() {
  const std::string text =
      machine_.output("sed -n 's/.* text //p' /tmp/judge.log | tr -d '\\n'; echo");
  return text.substr(0, text.size() - 1);
}

void Typist::waitForClones(int count) {
  machine_.waitUntil("[ $(cat /sys/class/input/input*/phys | grep -c ^zephlin-hidd/) = " +
                     std::to_string(count) + " ]");
  machine_.output("udevadm settle; sleep 1");
}

void Typist::makeKeyboard(const std::string& abilities) {
  machine_.output("rm -f /tmp/events; mkfifo /tmp/events; MadeKeyboard " + abilities +
                  " </tmp/events >/tmp/made.log & exec 9>/tmp/events");
  machine_.waitUntil("hidutil list | grep -q 'Made Keyboard'");
}

void Typist::endKeyboard() {
  machine_.output("exec 9>&-");
}

void Typist::turnSlowly(const std::string& events) {
  machine_.output("for each in " + events + "; do echo $each; sleep 0.2; done >&9");
}

}  // namespace zephlin
