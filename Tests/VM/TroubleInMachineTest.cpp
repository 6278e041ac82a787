#include "Tests/VM/TypedMachine.h"

namespace zephlin {
namespace {

constexpr int timesPlugged = 100;

/// What may go wrong while Caps Lock is instant.
class TroubleInMachine : public TypedMachine {
 protected:
  static void expectCheck(int status, const std::vector<std::string>& texts) {
    const auto check = machine().run("zephlin-hidd --check");
    EXPECT_EQ(check.status, status);
    for (const std::string& text : texts) {
      EXPECT_NE(check.output.find(text), std::string::npos) << text << "in\n" << check.output;
    }
  }

  /// What another program holds, and keyboards that need a clone if there is no uinput.
  void checkObstacles() {
    machine().output("rm -f /tmp/grabber; KeyboardGrabber /dev/input/" + nodeOf(0) +
                     " >/tmp/grabber & grabber=$!");
    machine().waitUntil("grep -q grabbed /tmp/grabber");
    expectCheck(1, {"   not possible: held by another program: KeyboardGrabber (pid ",
                    "   grabbed: it has no Caps Lock LED\n",
                    "1 of 2 keyboards cannot be made instant: see above.\n"});
    machine().run("kill $grabber; wait $grabber; mv /dev/uinput /dev/away");
    expectCheck(1, {"   watched\n", "   not possible: cannot use /dev/uinput ("});
    machine().output("mv /dev/away /dev/uinput");
  }
};

/// The longest, hence by itself.
class PluggingInMachine : public TypedMachine {};

TEST_F(TroubleInMachine, AKeyHeldDoesNotKeepAKeyboardFromBeingWatched) {
  machine().press(0, "a");
  waitUntilSeen("KEY_A 1");
  apply();
  machine().release(0, "a");
  waitUntilSeen("KEY_A 0");
  EXPECT_EQ(typeHello(0), "Hee");
}

TEST_F(TroubleInMachine, PulledWithKeysDownLeavesNoneStuck) {
  apply();
  tap(0, "caps_lock");
  machine().press(0, "a");
  machine().press(0, "caps_lock");
  waitUntilSeen("KEY_CAPSLOCK 1", 2);
  machine().pull({0});
  machine().waitUntil("[ $(grep -c ' 1$' /tmp/judge.log) = $(grep -c ' 0$' /tmp/judge.log) ]");
  machine().plug({0});
}

TEST_F(PluggingInMachine, AHundredTimesLeavesNothingBehind) {
  const auto descriptors = [] { return machine().output("ls /proc/$service/fd | wc -l"); };
  const auto memory = [] {
    return std::stoi(
        machine().output("sed -n 's/VmRSS:[^0-9]*\\([0-9]*\\).*/\\1/p' /proc/$service/status"));
  };
  const auto pullAndPlugAll = [this] {
    machine().pull({0, 1, 2, 3});
    machine().plug({0, 1, 2, 3});
    // Each is watched, and then grabbed.
    waitForStates(VirtualMachine::places, "default");
    machine().output("Zephlin apply");
    waitForStates(VirtualMachine::places, "watched");
    setDelay(300);
    waitForStates(VirtualMachine::places, "grabbed");
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
  restore();
  waitForClones(0);
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

TEST_F(TroubleInMachine, WhatAnotherProgramHoldsIsSaidAndComesBackByItself) {
  apply();
  machine().output("rm -f /tmp/grabber; KeyboardGrabber /dev/input/" + nodeOf(0) +
                   " >/tmp/grabber & grabber=$!");
  machine().waitUntil("grep -q grabbed /tmp/grabber");
  outwaitOldAnswers();
  const std::string holder =
      machine().output("echo \"held by another program: KeyboardGrabber (pid $grabber)\"");
  const std::string reason = holder.substr(0, holder.size() - 1);
  EXPECT_NE(machine().output("hidutil list").find("   " + reason + "   "), std::string::npos)
      << machine().output("hidutil list");
  EXPECT_EQ(machine().output("Zephlin status | grep -c -E '(instant.* 0|default.* 1)$'"), "2\n");
  const auto outcome = machine().run("hidutil property --set '{\"CapsLockDelayOverride\":0}' 2>&1");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.output.find(" is not set: " + reason + '\n'), std::string::npos)
      << outcome.output;
  EXPECT_EQ(machine().output("grep -c 'KeyboardGrabber' /tmp/service.log"), "1\n");
  expectCheck(1, {"   " + reason + "   ", "   not possible: see \"Now\"\n",
                  "The only keyboard cannot be made instant: see above.\n"});
  makeKeyboard();
  const auto applied = machine().run("Zephlin apply 2>&1");
  EXPECT_EQ(applied.status, 0);
  EXPECT_TRUE(applied.output.starts_with(
      "Applied, but only 1 of 2 keyboard services confirmed the override. Re-run in a moment.\n"
      "hidutil: keyboard "))
      << applied.output;
  EXPECT_TRUE(applied.output.ends_with(" is not set: " + reason + '\n')) << applied.output;
  endKeyboard();
  machine().run("kill $grabber; wait $grabber; sleep 1");
  EXPECT_EQ(typeHello(0), "Hee");
  waitForStates(1, "watched");
}

TEST_F(TroubleInMachine, WithoutUinputKeyboardsAreWatchedAndWhatNeedsItIsSaid) {
  machine().run("kill $service; wait $service; mv /dev/uinput /dev/away");
  startService();
  apply();
  EXPECT_EQ(typeHello(0), "Hee");
  const auto outcome =
      machine().run("hidutil property --set '{\"CapsLockDelayOverride\":300}' 2>&1");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.output.find("run modprobe uinput as root"), std::string::npos)
      << outcome.output;
  machine().output("grep -q 'modprobe uinput' /tmp/service.log; hidutil list | grep -q uinput");
  EXPECT_EQ(typeHello(0), "HEe");
  restore();
  expectCheck(0, {"   watched\n"});
  machine().output("mv /dev/away /dev/uinput");
  setDelay(300);
  waitForStates(1, "grabbed");
}

TEST_F(TroubleInMachine, TheCheckSaysHowEachKeyboardWillBeHandledAndDisturbsNone) {
  makeKeyboard();
  expectCheck(0, {"/dev/input/" + nodeOf(0) + " ", "   0627:0001   USB ", "   default   watched\n",
                  "   default   grabbed: it has no Caps Lock LED\n",
                  "\nAll 2 keyboards can be made instant.\n"});
  apply(2);
  expectCheck(0, {"   watched   watched\n", "   grabbed   grabbed: it has no Caps Lock LED\n"});
  waitForStates(2, "(watched|grabbed)");
  EXPECT_EQ(typeHello(0), "Hee");
  EXPECT_EQ(typeHelloOnMadeKeyboard(), "Hee");

  machine().run("kill $service; wait $service");
  EXPECT_EQ(textOf(0,
                   [] {
                     machine().press(0, "a");
                     expectCheck(
                         0, {"no keyboard service at /run/zephlin/hidd.sock (",
                             "   -     watched\n", "   -     grabbed: it has no Caps Lock LED\n",
                             "instant once the service answers: see above.\n"});
                     machine().release(0, "a");
                   }),
            "a");
  checkObstacles();
  startService("zephlin-hidd 9>&-");
  endKeyboard();
}

TEST_F(TroubleInMachine, AUserOfItsOwnIsEnoughForTheService) {
  machine().run("kill $service; wait $service; chown zephlin /run/zephlin");
  startService("su zephlin -c 'exec zephlin-hidd'");
  makeKeyboard();
  apply(2);
  EXPECT_EQ(typeHello(0), "Hee");
  EXPECT_EQ(typeHelloOnMadeKeyboard(), "Hee");
  endKeyboard();
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
