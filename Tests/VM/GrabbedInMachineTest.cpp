#include "Tests/VM/TypedMachine.h"

namespace zephlin {
namespace {

/// What may go wrong on grabbed keyboards, which have a clone. The keyboard that is made has no
/// LEDs, so its clone makes Caps Lock instant; a USB keyboard has one for a delay above zero.
class GrabbedInMachine : public TypedMachine {
 protected:
  /// Grabs keyboard 0.
  void grab() {
    setDelay(300);
    waitForStates(1, "grabbed");
  }

  /// Makes a keyboard and grabs it. Keyboard 0 is watched.
  void makeAndGrab() {
    makeKeyboard();
    apply(2);
    waitForStates(1, "grabbed");
  }
};

TEST_F(GrabbedInMachine, AKeyboardIsTakenOnlyWhenNoKeyIsHeld) {
  makeKeyboard();
  turnMade("KEY_A 1");
  waitUntilSeen("KEY_A 1");
  const auto outcome = machine().run("hidutil property --set '{\"CapsLockDelayOverride\":0}' 2>&1");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_NE(outcome.output.find("is not set: a key is held down\n"), std::string::npos)
      << outcome.output;
  waitForStates(1, "a key is held down");
  turnMade("KEY_A 0");
  // The keyboard that reported the press reports the release.
  machine().waitUntil(
      "[ $(sed -n 's/.* key \\(event[0-9]*\\) KEY_A .*/\\1/p' /tmp/judge.log | uniq -c | "
      "sed 's/event.*//') = 2 ]");
  waitForStates(1, "grabbed");
  EXPECT_EQ(typeHelloOnMadeKeyboard(), "Hee");
  endKeyboard();
}

TEST_F(GrabbedInMachine, PulledWithKeysDownLeavesNoneStuck) {
  makeAndGrab();
  turnMade("KEY_CAPSLOCK 1");
  turnMade("KEY_CAPSLOCK 0");
  waitUntilSeen("KEY_CAPSLOCK 0");
  turnMade("KEY_A 1");
  turnMade("KEY_CAPSLOCK 1");
  waitUntilSeen("KEY_CAPSLOCK 1", 2);
  endKeyboard();
  machine().waitUntil("[ $(grep -c ' 1$' /tmp/judge.log) = $(grep -c ' 0$' /tmp/judge.log) ]");
}

TEST_F(GrabbedInMachine, AKilledServiceLeavesTheKeyboardWorkingAtOnce) {
  makeAndGrab();
  turnMade("KEY_A 1");
  waitUntilSeen("KEY_A 1");
  machine().run("kill -9 $service; wait $service");
  waitUntilSeen("KEY_A 0");
  turnMade("KEY_A 0");
  EXPECT_EQ(typeHelloOnMadeKeyboard(), "HEe");
  machine().output("rm /run/zephlin/hidd.sock; exec 9>&-");
}

TEST_F(GrabbedInMachine, AServiceKilledWithinATapLeavesCapsLockUpAndWorking) {
  activateService("zephlin-hidd --tap-gap 50");
  makeAndGrab();
  turnMade("KEY_CAPSLOCK 1");
  turnMade("KEY_CAPSLOCK 0");
  waitForLed(0, true);
  waitUntilSeen("KEY_CAPSLOCK 0");
  // Stops the service when the tap's press comes out, so that its release cannot.
  machine().output(
      "active=$(pidof zephlin-hidd); { cat >/dev/null; : >/tmp/watching; until read -r line; case "
      "$line in *'CAPSLOCK 1') true ;; *) false ;; esac; do :; done; kill -STOP $active; "
      ": >/tmp/stopped; } </tmp/judge.log & until [ -e /tmp/watching ]; do sleep 0.1; done");
  turnMade("KEY_CAPSLOCK 1");
  machine().waitUntil("[ -e /tmp/stopped ]");
  EXPECT_TRUE(seen().ends_with("lock 1\nkey KEY_CAPSLOCK 0\nkey KEY_CAPSLOCK 1\n")) << seen();
  machine().output("killall -9 zephlin-hidd");
  waitUntilSeen("KEY_CAPSLOCK 0", 2);
  waitUntilSeen("lock 0");
  turnMade("KEY_CAPSLOCK 0");
  EXPECT_EQ(typeHelloOnMadeKeyboard(), "HEe");
  waitForStates(1, "grabbed");
  EXPECT_EQ(typeHelloOnMadeKeyboard(), "Hee");
  endKeyboard();
  endActivation();
  machine().output("rm /tmp/watching /tmp/stopped");
}

TEST_F(GrabbedInMachine, AFloodThatOverrunsTheKernelsQueueLeavesNoKeyStuck) {
  makeAndGrab();
  turnMade("KEY_CAPSLOCK 1");
  waitUntilSeen("KEY_CAPSLOCK 1");
  // A stopped service cannot keep up.
  machine().output(
      "kill -STOP $service; { echo KEY_CAPSLOCK 0; echo KEY_A 1; for each in $(seq 300); do "
      "echo KEY_J 1; echo KEY_J 0; done; echo KEY_B 1; } >&9");
  machine().waitUntil("grep -q 'KEY_B 1' /tmp/made.log");
  machine().output("kill -CONT $service");
  waitUntilSeen("KEY_A 1");
  waitUntilSeen("KEY_B 1");
  waitUntilSeen("KEY_CAPSLOCK 0");
  EXPECT_LT(std::stoi(machine().run("grep -c 'KEY_J 1' /tmp/judge.log").output), 300);
  machine().output("{ echo KEY_A 0; echo KEY_B 0; } >&9");
  waitUntilSeen("KEY_A 0");
  waitUntilSeen("KEY_B 0");
  EXPECT_EQ(textOf(0,
                   [&] {
                     turnSlowly(
                         "'KEY_H 1' 'KEY_H 0' 'KEY_CAPSLOCK 1' 'KEY_E 1' 'KEY_CAPSLOCK 0' "
                         "'KEY_E 0' 'KEY_E 1' 'KEY_E 0'");
                   }),
            "Hee");
  endKeyboard();
}

TEST_F(GrabbedInMachine, AnLedSetWhileMuchIsTypedIsNotLost) {
  grab();
  const auto setLed = [](int value) {
    machine().output(
        "cd /sys/class/input; clone=$(grep -l ^zephlin-hidd/ event*/device/phys); cd; printf "
        "'\\0\\0\\0\\0\\0\\0\\0\\0\\0\\0\\0\\0\\0\\0\\0\\0\\021\\0\\001\\0\\00" +
        std::to_string(value) + "\\0\\0\\0' >/dev/input/${clone%%/*}");
  };
  machine().output("kill -STOP $service");
  tap(0, "a");
  setLed(1);
  constexpr int more = 9;  // The kernel remembers about as many for the service.
  for (int count = 0; count < more; ++count) {
    tap(0, "a");
    machine().output("sleep 0.1");  // The virtual keyboard remembers only sixteen events.
  }
  machine().output("kill -CONT $service");
  waitUntilSeen("KEY_A 0", 1 + more);
  waitForLed(0, true);
  setLed(0);
  waitForLed(0, false);
}

TEST_F(GrabbedInMachine, ASecondServiceTakesTheKeyboardWhenTheFirstLetsGo) {
  makeAndGrab();
  machine().output("zephlin-hidd --socket /tmp/second.sock 2>/tmp/second.log & second=$!");
  machine().waitUntil("grep -q 'ready.* 2 keyboards' /tmp/second.log");
  machine().output(
      "hidutil --socket /tmp/second.sock property --set '{\"CapsLockDelayOverride\":0}' "
      "2>/tmp/reason; grep -q \"is not set: held by another program: zephlin-hidd (pid $service)\" "
      "/tmp/reason");
  EXPECT_EQ(typeHelloOnMadeKeyboard(), "Hee");
  EXPECT_EQ(typeHello(0), "Hee") << "which both services watch";
  machine().output("Zephlin restore");
  // It tries every five seconds.
  machine().waitUntil("hidutil --socket /tmp/second.sock list | grep -q '   grabbed   Made'");
  EXPECT_EQ(typeHelloOnMadeKeyboard(), "Hee");
  machine().run("kill $second; wait $second");
  EXPECT_EQ(typeHelloOnMadeKeyboard(), "HEe");
  EXPECT_EQ(typeHello(0), "HEe");
  endKeyboard();
}

TEST_F(GrabbedInMachine, BackspaceEnterAndEscapeReleaseAllKeyboards) {
  grab();
  for (const char* const key : {"backspace", "ret", "esc"}) {
    machine().press(0, key);
  }
  waitForClones(0);
  for (const char* const key : {"backspace", "ret", "esc"}) {
    machine().release(0, key);
  }
  EXPECT_EQ(typeHello(0), "HEe");
  EXPECT_EQ(machine().output("hidutil property --get CapsLockDelayOverride | grep -c null"), "1\n");
  machine().output("grep -q 'were held together' /tmp/service.log");
}

}  // namespace
}  // namespace zephlin
