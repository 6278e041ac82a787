#include <memory>

#include "Tests/VM/TypedMachine.h"

namespace zephlin {
namespace {

constexpr int ps2 = VirtualMachine::ps2Keyboard;

/// A PS/2 keyboard repeats by itself: it sends the key that is held again and again.
class Ps2InMachine : public testing::Test {
 protected:
  static void TearDownTestSuite() { theMachine.reset(); }

  void SetUp() override {
    typist_.apply();
    typist_.waitForStates(1, "watched");
  }

  void TearDown() override {
    if (HasFailure()) {
      ADD_FAILURE() << machine().run("tail -n 50 /tmp/judge.log /tmp/service.log").output;
      theMachine.reset();  // Nothing that the test has left behind is in the way of the next one.
      return;
    }
    typist_.finish();
  }

  static VirtualMachine& machine() {
    if (!theMachine) {
      theMachine = std::make_unique<VirtualMachine>(VIRTUAL_MACHINE_IMAGES,
                                                    VirtualHardware{.hasPs2Keyboard = true});
    }
    return *theMachine;
  }

  void lock() {
    typist_.tap(ps2, "caps_lock");
    typist_.waitForLed(ps2, true);
  }

  /// Presses the key and holds it as long as keyboards wait at least before they repeat it.
  static void hold(const std::string& key) {
    machine().press(ps2, key);
    machine().output("usleep 250000");
  }

  static std::unique_ptr<VirtualMachine> theMachine;
  Typist typist_{machine()};
};

std::unique_ptr<VirtualMachine> Ps2InMachine::theMachine;

TEST_F(Ps2InMachine, CapsLockThatIsHeldDoesNotLockAgain) {
  EXPECT_EQ(typist_.textOf(ps2,
                           [&] {
                             lock();
                             hold("caps_lock");
                             for (int count = 0; count < 20; ++count) {
                               machine().press(ps2, "caps_lock");
                               machine().output("usleep 33000");
                             }
                             typist_.waitForLed(ps2, false);
                             typist_.tap(ps2, "h");
                             machine().release(ps2, "caps_lock");
                             typist_.tap(ps2, "i");
                           }),
            "hi");
  EXPECT_EQ(machine().output("grep -c ' lock ' /tmp/judge.log"), "2\n");
  machine().output("zephlin-hidd --check | grep -q '   PS/2 .*   watched   watched$'");
  EXPECT_EQ(typist_.typeHello(ps2), "Hee");
}

TEST_F(Ps2InMachine, ShortTapsAreInstantAndOtherLedsStay) {
  const std::string numLock =
      "/sys/class/input/" + typist_.nodeOf(ps2) + "/device/*::numlock/brightness";
  for (const std::string lit : {"1", "0"}) {
    machine().output("for led in " + numLock + "; do echo " + lit + " >$led; done");
    for (int count = 0; count < 5; ++count) {
      EXPECT_EQ(typist_.typeHello(ps2), "Hee");
      EXPECT_EQ(machine().output("cat " + numLock), lit + '\n');
    }
  }
}

TEST_F(Ps2InMachine, NoKeyIsLostThatIsTypedAtTheSameTime) {
  for (int count = 0; count < 20; ++count) {
    const std::string text = typist_.textOf(ps2, [&] {
      lock();
      machine().press(ps2, "a");
      machine().press(ps2, "caps_lock");
      machine().output("usleep " + std::to_string(100 * count));
      typist_.tap(ps2, "b");
      typist_.tap(ps2, "c");
      machine().release(ps2, "a");
      machine().release(ps2, "caps_lock");
      typist_.tap(ps2, "d");
    });
    EXPECT_TRUE(text.starts_with("A") && text.ends_with("d")) << text;
    EXPECT_TRUE(text.find_first_of("bB") == 1 && text.find_first_of("cC") == 2) << text;
    EXPECT_EQ(text.size(), 4U) << text;
  }
}

TEST_F(Ps2InMachine, AServiceKilledWhileCapsLockIsHeldLeavesItWorking) {
  lock();
  hold("caps_lock");
  typist_.waitForLed(ps2, false);
  machine().run("kill -9 $service; wait $service; rm /run/zephlin/hidd.sock");
  machine().press(ps2, "caps_lock");
  machine().release(ps2, "caps_lock");
  typist_.finishTyping(ps2);
  typist_.waitForLed(ps2, false);
  EXPECT_EQ(typist_.typeHello(ps2), "HEe");
}

}  // namespace
}  // namespace zephlin
