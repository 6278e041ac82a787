#include "Tests/VM/TypedMachine.h"

namespace zephlin {
namespace {

constexpr int timesPlugged = 20;

/// What may go wrong while Caps Lock is instant.
using TroubleInMachine = TypedMachine;

TEST_F(TroubleInMachine, AKeyboardIsTakenOnlyWhenNoKeyIsHeld) {
  machine().press(0, "a");
  waitUntilSeen("KEY_A 1");
  apply();
  machine().release(0, "a");
  // The same keyboard that told of the press tells of the release.
  machine().waitUntil("grep -q 'key " + nodeOf(0) + " KEY_A 0' /tmp/judge.log");
  EXPECT_EQ(typeHello(0), "Hee");
}

TEST_F(TroubleInMachine, PulledWithKeysDownLeavesNoneStuck) {
  apply();
  tap(0, "caps_lock");
  machine().press(0, "a");
  machine().press(0, "caps_lock");
  waitUntilSeen("KEY_CAPSLOCK 1", 2);
  machine().pull(0);
  waitForClones(0);
  EXPECT_EQ(machine().output("grep -c ' 1$' /tmp/judge.log"),
            machine().output("expr $(grep -c ' 0$' /tmp/judge.log) + 0"));
  machine().plug(0);
}

TEST_F(TroubleInMachine, PluggingAndPullingLeavesNothingBehind) {
  const auto descriptors = [] { return machine().output("ls /proc/$service/fd | wc -l"); };
  const auto memory = [] {
    return std::stoi(
        machine().output("sed -n 's/VmRSS:[^0-9]*\\([0-9]*\\).*/\\1/p' /proc/$service/status"));
  };
  const auto plugAndPull = [] {
    machine().pull(0);
    machine().plug(0);
    machine().output("Zephlin apply");
  };
  plugAndPull();
  const std::string descriptorsBefore = descriptors();
  const int memoryBefore = memory();
  for (int count = 0; count < timesPlugged; ++count) {
    plugAndPull();
  }
  EXPECT_EQ(descriptors(), descriptorsBefore);
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
  machine().run("kill $service; wait $service");
  machine().output(
      "while :; do rm -f /run/zephlin/hidd.sock; systemd-socket-activate "
      "-l /run/zephlin/hidd.sock zephlin-hidd; done >/tmp/service.log 2>&1 & keeper=$!");
  machine().waitUntil("[ -S /run/zephlin/hidd.sock ]");
  apply();
  EXPECT_EQ(typeHello(0), "Hee");
  machine().output("killall -9 zephlin-hidd");
  waitForClones(0);
  machine().waitUntil("[ -S /run/zephlin/hidd.sock ]");
  EXPECT_EQ(typeHello(0), "HEe");
  apply();
  EXPECT_EQ(typeHello(0), "Hee");
  machine().run("kill -9 $keeper; killall zephlin-hidd; wait $keeper");
  waitForClones(0);
  machine().output("rm /run/zephlin/hidd.sock");
}

TEST_F(TroubleInMachine, BackspaceEnterAndEscapeGiveAllKeyboardsBack) {
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
