#include "Tests/VM/TypedMachine.h"

namespace zephlin {
namespace {

/// The application runs, without a display, and keeps Caps Lock instant by itself.
class ApplicationInMachine : public TypedMachine {
 protected:
  void SetUp() override {
    machine().output(
        "HOME=/tmp/home XDG_RUNTIME_DIR=/run Zephlin 2>/tmp/application.log & application=$!");
    waitForStates(1, "watched");
  }

  void TearDown() override {
    if (HasFailure()) {
      ADD_FAILURE() << machine().run("cat /tmp/application.log").output;
    }
    machine().run("kill $application; wait $application");
    TypedMachine::TearDown();
  }
};

TEST_F(ApplicationInMachine, MakesAKeyboardInstantThatIsPlugged) {
  EXPECT_EQ(typeHello(0), "Hee");
  machine().plug({1});
  waitForStates(2, "watched");
  EXPECT_EQ(typeHello(1), "Hee");
  EXPECT_EQ(typeHello(0), "Hee");
  machine().pull({1});
}

TEST_F(ApplicationInMachine, AppliesAgainWhenTheServiceIsRestarted) {
  machine().run("kill $service; wait $service");
  forgetProperties();
  EXPECT_EQ(typeHello(0), "HEe");
  startService();
  waitForStates(1, "watched");
  EXPECT_EQ(typeHello(0), "Hee");
}

TEST_F(ApplicationInMachine, StartsAKilledServiceAnewThroughItsSocketAndAppliesAgain) {
  activateService();
  waitForStates(1, "watched");
  EXPECT_EQ(typeHello(0), "Hee");
  machine().output("killed=$(pidof zephlin-hidd); kill -9 $killed");
  machine().waitUntil("pidof zephlin-hidd | grep -v -x $killed");
  waitForStates(1, "watched");
  EXPECT_EQ(typeHello(0), "Hee");
  machine().run("kill $application; wait $application");
  endActivation();
}

TEST_F(ApplicationInMachine, SuspendAndWakeLeaveItInstantAndNoKeyStuck) {
  machine().press(0, "a");
  waitUntilSeen("KEY_A 1");
  machine().suspendAndWake();
  machine().release(0, "a");
  waitUntilSeen("KEY_A 0");
  EXPECT_EQ(typeHello(0), "Hee");
}

}  // namespace
}  // namespace zephlin
