#include "Tests/VM/TypedMachine.h"

#include <memory>

namespace zephlin {

namespace {

std::unique_ptr<VirtualMachine> theMachine;

/// Boots the machine for all tests of the program.
class MachineEnvironment : public testing::Environment {
 public:
  void SetUp() override {
    theMachine = std::make_unique<VirtualMachine>(VIRTUAL_MACHINE_IMAGES);
    theMachine->plug(0);
  }
  void TearDown() override { theMachine.reset(); }
};

[[maybe_unused]] const auto* const environment =
    testing::AddGlobalTestEnvironment(new MachineEnvironment);

}  // namespace

VirtualMachine& TypedMachine::machine() {
  return *theMachine;
}

void TypedMachine::SetUp() {
  startService();
  startJudge();
}

void TypedMachine::TearDown() {
  if (HasFailure()) {
    ADD_FAILURE()
        << machine().run("tail -n 50 /tmp/judge.log /tmp/service.log; dmesg | tail").output;
  }
  machine().run("kill $service $judge; wait $service $judge");
  machine().waitUntil("[ ! -e /run/zephlin/hidd.sock ]");
}

void TypedMachine::startService(const std::string& command) {
  machine().output(command + " 2>/tmp/service.log & service=$!");
  machine().waitUntil("grep -q ready /tmp/service.log");
}

void TypedMachine::startJudge(const std::string& options) {
  machine().run("[ -z \"$judge\" ] || { kill $judge; wait $judge; }");
  machine().output("CapsLockJudge " + options + " >/tmp/judge.log 2>&1 & judge=$!");
  machine().waitUntil("grep -q ready /tmp/judge.log");
  marks_ = 0;
}

std::string TypedMachine::seen() {
  return machine().output(
      R"(sed -n 's/^[^ ]* //; /key/s/event[0-9]* //; /^[-+r]/!p' /tmp/judge.log)");
}

void TypedMachine::waitUntilSeen(const std::string& what, int times) {
  machine().waitUntil("[ $(grep -c '" + what + "' /tmp/judge.log) -ge " + std::to_string(times) +
                      " ]");
}

std::string TypedMachine::nodeOf(int keyboard) {
  const std::string name =
      machine().output("cd /sys/class/input; for each in event*; do if grep -q K" +
                       std::to_string(keyboard) + " $each/device/uniq; then echo $each; fi; done");
  return name.substr(0, name.find('\n'));
}

void TypedMachine::apply(int keyboards) {
  machine().output("Zephlin apply");
  waitForClones(keyboards);
}

void TypedMachine::restore() {
  machine().output("Zephlin restore");
  waitForClones(0);
}

void TypedMachine::tap(int keyboard, const std::string& key) {
  machine().press(keyboard, key);
  machine().release(keyboard, key);
}

std::string TypedMachine::typeHello(int keyboard) {
  return textOf(keyboard, [&] {
    tap(keyboard, "caps_lock");
    waitForLight(keyboard, true);
    tap(keyboard, "h");
    machine().press(keyboard, "caps_lock");
    machine().press(keyboard, "e");
    machine().release(keyboard, "caps_lock");
    machine().release(keyboard, "e");
    tap(keyboard, "e");
    waitForLight(keyboard, false);
  });
}

void TypedMachine::waitForLight(int keyboard, bool lit) {
  const std::string node = nodeOf(keyboard);
  machine().waitUntil("grep -q " + std::to_string(lit ? 1 : 0) + " /sys/class/input/" + node +
                      "/device/*::capslock/brightness");
}

void TypedMachine::finishTyping(int keyboard) {
  tap(keyboard, "f12");
  waitUntilSeen("KEY_F12 0", ++marks_);
}

std::string TypedMachine::text() {
  const std::string text =
      machine().output("sed -n 's/.* text //p' /tmp/judge.log | tr -d '\\n'; echo");
  return text.substr(0, text.size() - 1);
}

void TypedMachine::waitForClones(int count) {
  machine().waitUntil("[ $(cat /sys/class/input/input*/phys | grep -c ^zephlin-hidd/) = " +
                      std::to_string(count) + " ]");
  machine().output("udevadm settle; sleep 1");
}

}  // namespace zephlin
