#include "Tests/VM/TypedMachine.h"

namespace zephlin {
namespace {

constexpr int timesPlugged = 100;

/// What may go wrong while Caps Lock is instant.
class TroubleInMachine : public TypedMachine {};

/// The longest, hence by itself.
class PluggingInMachine : public TypedMachine {};

TEST_F(TroubleInMachine, AKeyboardIsTakenOnlyWhenNoKeyIsHeld) {
  machine().press(0, "a");
  waitUntilSeen("KEY_A 1");
  apply();
  machine().release(0, "a");
  // The keyboard that reported the press reports the release.
  machine().waitUntil("grep -q 'key " + nodeOf(0) + " KEY_A 0' /tmp/judge.log");
  EXPECT_EQ(typeHello(0), "Hee");
}

TEST_F(TroubleInMachine, PulledWithKeysDownLeavesNoneStuck) {
  apply();
  tap(0, "caps_lock");
  machine().press(0, "a");
  machine().press(0, "caps_lock");
  waitUntilSeen("KEY_CAPSLOCK 1", 2);
  machine().pull({0});
  waitForClones(0);
  EXPECT_EQ(machine().output("grep -c ' 1$' /tmp/judge.log"),
            machine().output("expr $(grep -c ' 0$' /tmp/judge.log) + 0"));
  machine().plug({0});
}

TEST_F(PluggingInMachine, AHundredTimesLeavesNothingBehind) {
  const auto descriptors = [] { return machine().output("ls /proc/$service/fd | wc -l"); };
  const auto memory = [] {
    return std::stoi(
        machine().output("sed -n 's/VmRSS:[^0-9]*\\([0-9]*\\).*/\\1/p' /proc/$service/status"));
  };
  const auto pullAndPlugAll = [] {
    machine().pull({0, 1, 2, 3});
    machine().plug({0, 1, 2, 3});
    machine().output("Zephlin apply; sleep 0.7");
  };
  machine().plug({1, 2, 3});
  pullAndPlugAll();
  const std::string descriptorsBefore = descriptors();
  const int memoryBefore = memory();
  for (int count = 0; count < timesPlugged; count += VirtualMachine::places) {
    pullAndPlugAll();
  }
  EXPECT_EQ(descriptors(), descriptorsBefore);
  waitForClones(VirtualMachine::places);
  machine().pull({1, 2, 3});
  waitForClones(1);
  restore();
  EXPECT_LT(memory() - memoryBefore, 500) << "kilobytes";
}

TEST_F(TroubleInMachine, SuspendAndWakeLeaveItInstantAndNoKeyStuck) {
  apply();
  machine().press(0, "a");
  waitUntilSeen("KEY_A 1");
  machine().suspendAndWake();
  machine().release(0, "a");
  machine().output("udevadm settle");
  waitUntilSeen("KEY_A 0");
  apply();
  EXPECT_EQ(typeHello(0), "Hee");
}

TEST_F(TroubleInMachine, AKilledServiceLeavesTheKeyboardWorkingAtOnce) {
  apply();
  machine().press(0, "a");
  waitUntilSeen("KEY_A 1");
  machine().run("kill -9 $service; wait $service");
  waitUntilSeen("KEY_A 0");
  machine().release(0, "a");
  EXPECT_EQ(typeHello(0), "HEe");
  machine().output("rm /run/zephlin/hidd.sock");
}

TEST_F(TroubleInMachine, ActivationBringsAKilledServiceBack) {
  activateService();
  apply();
  EXPECT_EQ(typeHello(0), "Hee");
  machine().output("killall -9 zephlin-hidd");
  waitForClones(0);
  machine().waitUntil("[ -S /run/zephlin/hidd.sock ]");
  EXPECT_EQ(typeHello(0), "HEe");
  apply();
  EXPECT_EQ(typeHello(0), "Hee");
  endActivation();
}

TEST_F(TroubleInMachine, AServiceKilledWithinATapLeavesCapsLockUpAndWorking) {
  activateService("zephlin-hidd --tap-gap 50");
  apply();
  tap(0, "caps_lock");
  waitForLed(0, true);
  waitUntilSeen("KEY_CAPSLOCK 0");
  // Stops the service when the tap's press comes out, so that its release cannot.
  machine().output(
      "active=$(pidof zephlin-hidd); { cat >/dev/null; : >/tmp/watching; until read -r line; case "
      "$line in *'CAPSLOCK 1') true ;; *) false ;; esac; do :; done; kill -STOP $active; "
      ": >/tmp/stopped; } </tmp/judge.log & until [ -e /tmp/watching ]; do sleep 0.1; done");
  machine().press(0, "caps_lock");
  machine().waitUntil("[ -e /tmp/stopped ]");
  EXPECT_TRUE(seen().ends_with("lock 1\nkey KEY_CAPSLOCK 0\nkey KEY_CAPSLOCK 1\n")) << seen();
  machine().output("killall -9 zephlin-hidd");
  waitUntilSeen("KEY_CAPSLOCK 0", 2);
  waitUntilSeen("lock 0");
  machine().release(0, "caps_lock");
  EXPECT_EQ(typeHello(0), "HEe");
  apply();
  EXPECT_EQ(typeHello(0), "Hee");
  endActivation();
  machine().output("rm /tmp/watching /tmp/stopped");
}

TEST_F(TroubleInMachine, AFloodThatOverrunsTheKernelsQueueLeavesNoKeyStuck) {
  makeKeyboard();
  apply(2);
  machine().output("echo KEY_CAPSLOCK 1 >&9");
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
  waitForClones(1);
}

TEST_F(TroubleInMachine, AnLedSetWhileMuchIsTypedIsNotLost) {
  apply();
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

TEST_F(TroubleInMachine, AKeyboardThatHasJustGoneKeepsNobodyFromSettingTheOthers) {
  makeKeyboard();
  machine().output(
      "cd /sys/class/input; made=$(grep -l -x 'Made Keyboard' event*/device/name); cd; "
      "made=/dev/input/${made%%/*}; mv $made /dev/away");
  apply(1);
  EXPECT_EQ(typeHello(0), "Hee");
  machine().output("mv /dev/away $made");
  endKeyboard();
}

TEST_F(TroubleInMachine, ASecondServiceTakesTheKeyboardWhenTheFirstLetsGo) {
  apply();
  machine().output("zephlin-hidd --socket /tmp/second.sock 2>/tmp/second.log & second=$!");
  machine().waitUntil("grep -q 'ready.* 1 keyboard' /tmp/second.log");
  machine().output(
      "hidutil --socket /tmp/second.sock property --set '{\"CapsLockDelayOverride\":0}'");
  machine().waitUntil("grep -q 'is held by another program' /tmp/second.log");
  EXPECT_EQ(typeHello(0), "Hee");
  machine().output("Zephlin restore");
  // It tries every five seconds.
  waitForClones(1);
  machine().output("sleep 6");
  EXPECT_EQ(typeHello(0), "Hee");
  machine().run("kill $second; wait $second");
  waitForClones(0);
  EXPECT_EQ(typeHello(0), "HEe");
}

TEST_F(TroubleInMachine, BackspaceEnterAndEscapeReleaseAllKeyboards) {
  apply();
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

TEST_F(TroubleInMachine, WithoutUinputKeyboardsAreListedAndTheReasonIsSaid) {
  machine().run("kill $service; wait $service; mv /dev/uinput /dev/away");
  startService();
  EXPECT_EQ(machine().output("hidutil list | wc -l"), "2\n");
  EXPECT_EQ(machine().run("Zephlin apply 2>&1").status, 1);
  EXPECT_NE(machine().run("Zephlin apply 2>&1").output.find("run modprobe uinput as root"),
            std::string::npos);
  machine().output("grep -q 'modprobe uinput' /tmp/service.log");
  machine().output("mv /dev/away /dev/uinput");
  apply();
  EXPECT_EQ(typeHello(0), "Hee");
}

TEST_F(TroubleInMachine, AUserOfItsOwnIsEnoughForTheService) {
  machine().run("kill $service; wait $service; chown zephlin /run/zephlin");
  startService("su zephlin -c 'exec zephlin-hidd'");
  apply();
  EXPECT_EQ(typeHello(0), "Hee");
  machine().run("kill $service; wait $service; chown root /run/zephlin");
}

TEST_F(TroubleInMachine, NothingThatIsTypedIsLogged) {
  apply();
  typeHello(0);
  restore();
  EXPECT_EQ(machine().output("grep -v -E 'plugged|ready|CapsLockDelayOverride=(0|-1) set on 1 "
                             "keyboard by user 0$' /tmp/service.log; :"),
            "");
}

}  // namespace
}  // namespace zephlin
