#include "Tests/VM/TypedMachine.h"

namespace zephlin {
namespace {

constexpr const char* values = "hidutil property --get CapsLockDelayOverride | grep -o '[^ ]*$'";

/// What a service that was killed leaves to the one that activation starts after it.
class RestartInMachine : public TypedMachine {
 protected:
  void SetUp() override {
    activateService();
    makeKeyboard();
    apply(2);
    machine().output("killed=$(pidof zephlin-hidd); kill -9 $killed");
    machine().waitUntil("[ -z \"$(pidof zephlin-hidd)\" ] && [ -S /run/zephlin/hidd.sock ]");
    EXPECT_EQ(typeHello(0), "HEe");
  }

  void TearDown() override {
    endKeyboard();
    endActivation();
    TypedMachine::TearDown();
  }
};

TEST_F(RestartInMachine, PropertiesArePutBackThoughNobodySetsThem) {
  EXPECT_EQ(machine().output(values), "Value\n0\n0\n");
  waitForStates(1, "watched");
  waitForStates(1, "grabbed");
  EXPECT_EQ(typeHello(0), "Hee");
  EXPECT_EQ(typeHelloOnMadeKeyboard(), "Hee");
}

TEST_F(RestartInMachine, AKeyboardThatWasPluggedMeanwhileHasNone) {
  machine().plug({1});
  EXPECT_EQ(machine().output(std::string(values) + " | sort | uniq -c | grep -o '[0-9].*'"),
            "1 (null)\n2 0\n1 Value\n");
  waitForStates(1, "default");
  EXPECT_EQ(typeHello(1), "HEe");
  machine().pull({1});
}

TEST_F(RestartInMachine, NorHasOneThatWasPulledAndPluggedMeanwhile) {
  machine().pull({0});
  machine().plug({0});
  EXPECT_EQ(machine().output(std::string(values) + " | sort | uniq -c | grep -o '[0-9].*'"),
            "1 (null)\n1 0\n1 Value\n");
  EXPECT_EQ(typeHello(0), "HEe");
}

}  // namespace
}  // namespace zephlin
