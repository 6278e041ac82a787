#include "Tests/VM/TypedMachine.h"

namespace zephlin {
namespace {

constexpr const char* rule = "/run/udev/rules.d/99-seat.rules";

/// Keyboard 1 is on seat1, as loginctl attach would have it, and keyboard 0 on seat0.
class SeatsInMachine : public TypedMachine {
 protected:
  void TearDown() override {
    machine().output("rm -rf /run/systemd/sessions /run/systemd/users /run/systemd/seats " +
                     std::string(rule) + "; udevadm control --reload");
    machine().pull({1});
    TypedMachine::TearDown();
  }

  /// Also of a keyboard that is plugged already.
  static void moveToSeat1() {
    machine().output(
        "mkdir -p /run/udev/rules.d; echo 'SUBSYSTEM==\"input\", "
        "ATTRS{serial}==\"K1\", ENV{ID_SEAT}=\"seat1\"' >" +
        std::string(rule) +
        "; udevadm control --reload; "
        "udevadm trigger --action=change --subsystem-match=input; udevadm settle");
  }

  static VirtualMachine::Outcome setOnBoth(int milliseconds, const std::string& by = "root") {
    return machine().run("su " + by +
                         " -c \"hidutil property --set '{\\\"CapsLockDelayOverride\\\":" +
                         std::to_string(milliseconds) + "}'\" 2>&1");
  }

  /// The nodes from which the keys of keyboard 1 come.
  std::string nodesOfKey() {
    tap(1, "q");
    waitUntilSeen("KEY_Q 0");
    return machine().output(
        "sed -n 's/.* key \\(event[0-9]*\\) KEY_Q .*/\\1/p' /tmp/judge.log | sort -u");
  }
};

TEST_F(SeatsInMachine, AKeyboardOfAnotherSeatIsWatchedButNeverCloned) {
  moveToSeat1();
  machine().plug({1});
  apply(2);
  waitForStates(2, "watched");
  EXPECT_EQ(typeHello(1), "Hee");
  const auto outcome = setOnBoth(300);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_NE(outcome.output.find(" is not set: on seat1"), std::string::npos) << outcome.output;
  waitForStates(1, "on seat1.*");
  waitForStates(1, "grabbed");
  waitForClones(1);
  EXPECT_EQ(nodesOfKey(), nodeOf(1) + '\n');
  EXPECT_EQ(typeHello(1), "HEe");
}

TEST_F(SeatsInMachine, AKeyboardThatMovesToAnotherSeatLosesItsClone) {
  machine().plug({1});
  EXPECT_EQ(setOnBoth(300).status, 0);
  waitForStates(2, "grabbed");
  moveToSeat1();
  waitForStates(1, "grabbed");
  waitForClones(1);
  EXPECT_EQ(nodesOfKey(), nodeOf(1) + '\n');
}

TEST_F(SeatsInMachine, AUserSetsTheKeyboardsOfTheSeatOfTheirSession) {
  moveToSeat1();
  machine().plug({1});
  // As logind writes them.
  machine().output(
      "mkdir -p /run/systemd/sessions /run/systemd/users /run/systemd/seats; "
      "printf '%s\\n' UID=900 USER=zephlin ACTIVE=1 STATE=active REMOTE=0 TYPE=wayland CLASS=user "
      "SEAT=seat1 >/run/systemd/sessions/c1; "
      "printf '%s\\n' NAME=zephlin STATE=active SESSIONS=c1 ACTIVE_SESSIONS=c1 ONLINE_SESSIONS=c1 "
      "SEATS=seat1 ACTIVE_SEATS=seat1 ONLINE_SEATS=seat1 >/run/systemd/users/900; "
      "printf '%s\\n' IS_SEAT0=0 ACTIVE=c1 ACTIVE_UID=900 SESSIONS=c1 UIDS=900 "
      ">/run/systemd/seats/seat1");
  const auto outcome = setOnBoth(0, "zephlin");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_NE(outcome.output.find(" is not set: not on your seat\n"), std::string::npos)
      << outcome.output;
  waitForStates(1, "watched");
  EXPECT_EQ(typeHello(1), "Hee");
  EXPECT_EQ(typeHello(0), "HEe");
}

}  // namespace
}  // namespace zephlin
