#include <gtest/gtest.h>

#include <memory>

#include "Tests/VM/Typist.h"

namespace zephlin {
namespace {

constexpr int usbKeyboard = 0;
constexpr int ps2Keyboard = VirtualMachine::ps2Keyboard;
constexpr int allKeyboards[] = {usbKeyboard, ps2Keyboard};

std::unique_ptr<VirtualMachine> theMachine;

VirtualMachine& machine() {
  if (!theMachine) {
    theMachine =
        std::make_unique<VirtualMachine>(DISPLAY_IMAGES, VirtualHardware{.hasPs2Keyboard = true});
    theMachine->plug({usbKeyboard});
  }
  return *theMachine;
}

class MachineEnvironment : public testing::Environment {
 public:
  void TearDown() override { theMachine.reset(); }
};

[[maybe_unused]] const auto* const environment =
    testing::AddGlobalTestEnvironment(new MachineEnvironment);

/// The display servers of displayServer.sh. What is typed is read by a program that runs under one.
class DisplayServer : public testing::TestWithParam<std::string>, protected Typist {
 protected:
  DisplayServer() : Typist(machine(), "displayServer.sh " + GetParam()) {}

  void TearDown() override {
    if (HasFailure()) {
      ADD_FAILURE() << machine()
                           .run(
                               "tail -n 50 /tmp/judge.log /tmp/server.log /tmp/service.log; "
                               "dmesg | tail")
                           .output;
      theMachine.reset();  // Nothing that the test has left behind is in the way of the next one.
      return;
    }
    restore();
    finish();
  }

  /// The text of typeHello without Zephlin. The text console ends its lock at the press of Caps
  /// Lock by itself.
  static std::string usualHello() { return GetParam() == "Console" ? "Hee" : "HEe"; }

  void setUsbKeyboard() {
    machine().output(R"(hidutil property --matching '{"Product":"QEMU QEMU USB Keyboard"}' )"
                     R"(--set '{"CapsLockDelayOverride":0}')");
    waitForStates(1, "watched");
  }

  void waitForLeds(bool lit) {
    for (const int keyboard : allKeyboards) {
      waitForLed(keyboard, lit);
    }
  }

  /// Holds Caps Lock for 800 ms, in which a PS/2 keyboard repeats it.
  static void holdCapsLock(int keyboard) {
    machine().press(keyboard, "caps_lock");
    machine().output("sleep 0.5");
    for (int repetition = 0; repetition < 10; ++repetition) {
      if (keyboard == ps2Keyboard) {
        machine().press(keyboard, "caps_lock");
      }
      machine().output("sleep 0.03");
    }
  }

  /// Like typeHello, with Caps Lock held for long both times, and e typed while it is.
  std::string typeHelloHolding(int keyboard) {
    return textOf(keyboard, [&] {
      holdCapsLock(keyboard);
      machine().release(keyboard, "caps_lock");
      waitForLeds(true);
      tap(keyboard, "h");
      holdCapsLock(keyboard);
      tap(keyboard, "e");
      machine().release(keyboard, "caps_lock");
      waitForLeds(false);
      tap(keyboard, "e");
    });
  }

  /// Like typeHello, with a lock that is made on one keyboard and ended on another. The USB
  /// keyboard reports its keys later than the PS/2 keyboard.
  std::string typeHelloAcross(int first, int second) {
    return textOf(second, [&] {
      tap(first, "caps_lock");
      waitForLeds(true);
      tap(first, "h");
      finishTyping(first);
      machine().press(second, "caps_lock");
      tap(second, "e");
      machine().release(second, "caps_lock");
      waitForLeds(false);
      tap(first, "e");
      finishTyping(first);
    });
  }
};

TEST_P(DisplayServer, ReadsHelloAtOnceAfterApplyAndAsEverAfterRestore) {
  const auto expectFromAll = [&](const std::string& text) {
    for (const int keyboard : allKeyboards) {
      EXPECT_EQ(typeHello(keyboard), text) << "keyboard " << keyboard;
    }
  };
  expectFromAll(usualHello());
  apply(2);
  expectFromAll("Hee");
  restore();
  expectFromAll(usualHello());
}

TEST_P(DisplayServer, MayHaveOneKeyboardThatIsSetAndOneThatIsNot) {
  setUsbKeyboard();
  EXPECT_EQ(typeHello(usbKeyboard), "Hee");
  EXPECT_EQ(typeHello(ps2Keyboard), usualHello());
  EXPECT_EQ(typeHelloAcross(ps2Keyboard, usbKeyboard), "Hee");
  EXPECT_EQ(typeHelloAcross(usbKeyboard, ps2Keyboard), usualHello());
}

TEST_P(DisplayServer, EndsOnOneKeyboardALockThatWasMadeOnAnother) {
  apply(2);
  EXPECT_EQ(typeHelloAcross(usbKeyboard, ps2Keyboard), "Hee");
  EXPECT_EQ(typeHelloAcross(ps2Keyboard, usbKeyboard), "Hee");
}

TEST_P(DisplayServer, LocksOnceWhenCapsLockIsHeldForLong) {
  apply(2);
  for (const int keyboard : allKeyboards) {
    EXPECT_EQ(typeHelloHolding(keyboard), "Hee") << "keyboard " << keyboard;
  }
}

/// Letters one to five milliseconds behind the press, each after a lock of its own.
TEST_P(DisplayServer, ReadsLettersRightBehindThePress) {
  makeKeyboard("LED");
  const auto type = [&] {
    for (const char* const gap : {"1", "2", "3", "4", "5"}) {
      machine().output(
          "for each in 'KEY_CAPSLOCK 1' 'PAUSE 50' 'KEY_CAPSLOCK 0' 'PAUSE 200' 'KEY_H 1' "
          "'KEY_H 0' 'PAUSE 50' 'KEY_CAPSLOCK 1' 'PAUSE " +
          std::string(gap) +
          "' 'KEY_E 1' 'PAUSE 50' 'KEY_CAPSLOCK 0' 'KEY_E 0' 'PAUSE 200' 'KEY_E 1' 'KEY_E 0'; do "
          "echo $each; done >&9");
    }
    machine().waitUntil("[ $(grep -c 'KEY_E 0' /tmp/made.log) = 10 ]");
  };
  apply(3);
  EXPECT_EQ(textOf(usbKeyboard, type), "HeeHeeHeeHeeHee");
  endKeyboard();
}

INSTANTIATE_TEST_SUITE_P(Displays, DisplayServer,
                         testing::Values("Sway", "Weston", "Xorg", "XorgWithoutConsole", "Console"),
                         [](const auto& server) { return server.param; });

/// Display servers with options of XKB. Under Xorg the text console must be off, else it turns the
/// LED on for a key that locks nothing.
class DisplayServerWithOptions : public DisplayServer {
 protected:
  std::string typed() {
    const std::size_t sizeBefore = seen().size();
    machine().press(usbKeyboard, "caps_lock");
    tap(usbKeyboard, "a");
    machine().release(usbKeyboard, "caps_lock");
    tap(usbKeyboard, "b");
    finishTyping(usbKeyboard);
    for (const char* const letter : {"c", "d", "f"}) {
      machine().press(usbKeyboard, "shift");
      machine().press(usbKeyboard, "shift_r");
      machine().release(usbKeyboard, "shift_r");
      machine().release(usbKeyboard, "shift");
      tap(usbKeyboard, letter);
      finishTyping(usbKeyboard);
    }
    return seen().substr(sizeBefore);
  }
};

TEST_P(DisplayServerWithOptions, LetsThemBeAsEver) {
  for (const char* const options : {"ctrl:nocaps", "caps:escape", "shift:both_capslock"}) {
    startJudge(options);
    const std::string before = typed();
    apply(2);
    EXPECT_EQ(typed(), before) << options;
    restore();
  }
}

INSTANTIATE_TEST_SUITE_P(Displays, DisplayServerWithOptions,
                         testing::Values("Sway", "Weston", "XorgWithoutConsole"),
                         [](const auto& server) { return server.param; });

}  // namespace
}  // namespace zephlin
