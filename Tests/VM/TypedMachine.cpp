#include "Tests/VM/TypedMachine.h"

#include <memory>

namespace zephlin {

namespace {

std::unique_ptr<VirtualMachine> theMachine;

void boot() {
  theMachine = std::make_unique<VirtualMachine>(VIRTUAL_MACHINE_IMAGES);
  theMachine->plug({0});
}

/// Ends the machine that the tests of the program have shared.
class MachineEnvironment : public testing::Environment {
 public:
  void TearDown() override { theMachine.reset(); }
};

[[maybe_unused]] const auto* const environment =
    testing::AddGlobalTestEnvironment(new MachineEnvironment);

}  // namespace

VirtualMachine& TypedMachine::machine() {
  if (!theMachine) {
    boot();
  }
  return *theMachine;
}

void TypedMachine::TearDown() {
  if (HasFailure()) {
    ADD_FAILURE()
        << machine().run("tail -n 50 /tmp/judge.log /tmp/service.log; dmesg | tail").output;
    theMachine.reset();  // Nothing that the test has left behind is in the way of the next one.
    return;
  }
  finish();
}

}  // namespace zephlin
