#include "Tests/VM/TypedMachine.h"

namespace zephlin {
namespace {

class CapsLockInMachine : public TypedMachine {};

TEST_F(CapsLockInMachine, ActsAtThePressAfterApplyAndAsEverAfterRestore) {
  EXPECT_EQ(typeHello(0), "HEe");
  apply();
  EXPECT_EQ(typeHello(0), "Hee");
  restore();
  EXPECT_EQ(typeHello(0), "HEe");
}

TEST_F(CapsLockInMachine, EachKeyboardHasItsOwnDelay) {
  machine().plug({1});
  EXPECT_EQ(typeHello(1), "HEe");
  apply(2);
  EXPECT_EQ(typeHello(0), "Hee");
  EXPECT_EQ(typeHello(1), "Hee");
  machine().output(R"(hidutil property --matching '{"RegistryID":"100000002"}' )"
                   R"(--set '{"CapsLockDelayOverride":300}')");
  EXPECT_EQ(typeHello(0), "Hee");
  EXPECT_EQ(textOf(1,
                   [&] {
                     tap(1, "caps_lock");
                     tap(1, "h");
                   }),
            "h");
  EXPECT_EQ(textOf(1,
                   [&] {
                     machine().press(1, "caps_lock");
                     machine().output("sleep 1");
                     tap(1, "h");
                     machine().release(1, "caps_lock");
                     tap(1, "i");
                   }),
            "HI");
  machine().pull({1});
}

TEST_F(CapsLockInMachine, TheCloneLooksLikeItsKeyboard) {
  const auto descriptions = [] {
    return machine().output(
        "for each in /sys/class/input/event*/device; do grep -q K0 $each/uniq || grep -q ^zephlin "
        "$each/phys || continue; cat $each/name $each/id/* $each/capabilities/* $each/properties | "
        "md5sum; done");
  };
  const std::string original = descriptions();
  setDelay(300);
  waitForStates(1, "grabbed");
  EXPECT_EQ(descriptions(), original + original);
}

TEST_F(CapsLockInMachine, AWatchedKeyboardNeedsNoClone) {
  apply();
  waitForStates(1, "watched");
  waitForClones(0);
}

TEST_F(CapsLockInMachine, AKeyboardWithoutLedsIsInstantToo) {
  makeKeyboard();
  EXPECT_EQ(typeHelloOnMadeKeyboard(), "HEe");
  apply(2);
  waitForStates(1, "grabbed");
  EXPECT_EQ(typeHelloOnMadeKeyboard(), "Hee");
  restore();
  EXPECT_EQ(typeHelloOnMadeKeyboard(), "HEe");
  endKeyboard();
}

TEST_F(CapsLockInMachine, AKeyboardThatIsAMouseTooKeepsItsMouse) {
  makeKeyboard("mouse");
  const auto usedMouse = [&] {
    startJudge();
    turnSlowly("'REL_X 5' 'BTN_LEFT 1' 'REL_Y -3' 'BTN_LEFT 0' 'REL_WHEEL 1'");
    finishTyping(0);
    return seen();
  };
  const std::string before = usedMouse();
  EXPECT_EQ(before,
            "moved REL_X 5\nkey BTN_LEFT 1\nmoved REL_Y -3\nkey BTN_LEFT 0\nmoved REL_WHEEL 1\n"
            "key KEY_F12 1\nkey KEY_F12 0\n");
  apply(2);
  EXPECT_EQ(usedMouse(), before);
  EXPECT_EQ(typeHelloOnMadeKeyboard(), "Hee");
  endKeyboard();
}

TEST_F(CapsLockInMachine, TheClonesAreNotListed) {
  makeKeyboard();
  apply(2);
  waitForClones(1);
  EXPECT_EQ(machine().output("hidutil list | wc -l"), "3\n");
  endKeyboard();
}

/// Caps Lock as a modifier, and both ways of locking with the shift keys.
class OtherUsesOfCapsLock : public TypedMachine, public testing::WithParamInterface<const char*> {
 protected:
  /// In pieces, as the virtual keyboard remembers only sixteen events.
  std::string typed() {
    startJudge(GetParam());
    machine().press(0, "caps_lock");
    tap(0, "a");
    machine().release(0, "caps_lock");
    tap(0, "b");
    finishTyping(0);
    for (const char* const letter : {"c", "d"}) {
      machine().press(0, "shift");
      machine().press(0, "shift_r");
      machine().release(0, "shift_r");
      machine().release(0, "shift");
      tap(0, letter);
      finishTyping(0);
    }
    return seen();
  }
};

TEST_P(OtherUsesOfCapsLock, AreAsEver) {
  const std::string before = typed();
  apply();
  EXPECT_EQ(typed(), before);
}

INSTANTIATE_TEST_SUITE_P(Options, OtherUsesOfCapsLock,
                         testing::Values("ctrl:nocaps", "caps:escape", "shift:both_capslock"));

}  // namespace
}  // namespace zephlin
