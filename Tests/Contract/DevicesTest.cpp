#include "Tests/Contract/ContractTest.h"

namespace zephlin::contract {
namespace {

class DevicesTest : public ContractTest {
 protected:
  std::unique_ptr<Observation> observe(std::function<void()> callback) {
    return platform().hidDevices().observeDeviceAppeared(std::move(callback));
  }
};

TEST_F(DevicesTest, DevicesThatAreThereAlreadyDoNotCount) {
  int calls = 0;
  const auto observation = observe([&] { ++calls; });
  ASSERT_NE(observation, nullptr);
  settle();
  EXPECT_EQ(calls, 0);
}

TEST_F(DevicesTest, EachThatAppearsIsTold) {
  int calls = 0;
  const auto observation = observe([&] { ++calls; });
  desktop().plugKeyboard();
  EXPECT_TRUE(runUntil([&] { return calls == 1; }));
  desktop().plugKeyboard();
  EXPECT_TRUE(runUntil([&] { return calls == 2; }));
}

TEST_F(DevicesTest, AnObservationEndsWithItsObject) {
  int calls = 0;
  int others = 0;
  auto observation = observe([&] { ++calls; });
  desktop().plugKeyboard();
  EXPECT_TRUE(runUntil([&] { return calls == 1; }));
  observation.reset();
  const auto other = observe([&] { ++others; });
  desktop().plugKeyboard();
  EXPECT_TRUE(runUntil([&] { return others == 1; }));
  EXPECT_EQ(calls, 1);
}

TEST_F(DevicesTest, AnObservationMayEndWithinItsOwnCallback) {
  int calls = 0;
  std::unique_ptr<Observation> observation;
  observation = observe([&] {
    observation.reset();
    ++calls;
  });
  desktop().plugKeyboard();
  EXPECT_TRUE(runUntil([&] { return calls == 1; }));
  settle();
  EXPECT_EQ(calls, 1);
}

TEST_F(DevicesTest, EachWakingIsTold) {
  int wakes = 0;
  const auto observation = platform().workspace().observeDidWake([&] { ++wakes; });
  ASSERT_NE(observation, nullptr);
  settle();
  EXPECT_EQ(wakes, 0);
  desktop().sleepAndWake();
  EXPECT_TRUE(runUntil([&] { return wakes == 1; }));
  desktop().sleepAndWake();
  EXPECT_TRUE(runUntil([&] { return wakes == 2; }));
}

TEST_F(DevicesTest, TheObservationOfWakingMayEndWithinItsOwnCallback) {
  int wakes = 0;
  int others = 0;
  std::unique_ptr<Observation> observation;
  observation = platform().workspace().observeDidWake([&] {
    observation.reset();
    ++wakes;
  });
  const auto other = platform().workspace().observeDidWake([&] { ++others; });
  desktop().sleepAndWake();
  desktop().sleepAndWake();
  EXPECT_TRUE(runUntil([&] { return others == 2; }));
  EXPECT_EQ(wakes, 1);
}

}  // namespace
}  // namespace zephlin::contract
