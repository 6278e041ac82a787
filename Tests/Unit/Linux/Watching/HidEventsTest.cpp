#include <gtest/gtest.h>

#include <filesystem>
#include <memory>

#include "Tests/Unit/Linux/Watching/Support/MockedDevices.h"
#include "Tests/Unit/Linux/Watching/Support/ObservedService.h"

namespace zephlin {
namespace {

using test::FakeService;

class HidEvents : public test::ObservedService {
 protected:
  void startService() {
    std::filesystem::create_directories(std::filesystem::path(path_).parent_path());
    service_ = std::make_unique<FakeService>(path_);
  }

  test::MockedDevices machine_;
  const std::string device_ = machine_.add("hid");
  std::unique_ptr<FakeService> service_;
};

TEST_F(HidEvents, CountWhileThereIsNoService) {
  observe();
  machine_.announce(device_, "bind");
  EXPECT_TRUE(callsAre(1));
  machine_.announce(device_, "bind");
  EXPECT_TRUE(callsAre(2));
}

TEST_F(HidEvents, AreOnlyThoseOfADeviceThatCanBeUsed) {
  observe();
  machine_.announce(device_, "add");
  machine_.announce(device_, "change");
  machine_.announce(device_, "unbind");
  machine_.announce(device_, "remove");
  machine_.announce(machine_.add("usb"), "bind");
  machine_.announce(device_, "bind");
  EXPECT_TRUE(callsAre(1));
}

TEST_F(HidEvents, CountBesideTheServiceWhichKnowsOnlyKeyboards) {
  startService();
  observe();
  ASSERT_TRUE(service_->acceptSubscription());
  service_->send(keyboardAppeared);
  ASSERT_TRUE(callsAre(1));
  machine_.announce(device_, "bind");
  EXPECT_TRUE(callsAre(2));
  service_.reset();
  machine_.announce(device_, "bind");
  EXPECT_TRUE(callsAre(3));
}

TEST_F(HidEvents, EndWithinACall) {
  LinuxHidDevices devices(
      WindowSystem::X11, [] { return false; }, path_);
  int calls = 0;
  std::unique_ptr<Observation> observation;
  observation = devices.observeDeviceAppeared([&] {
    observation.reset();
    ++calls;
  });
  observe();
  machine_.announce(device_, "bind");
  machine_.announce(device_, "bind");
  EXPECT_TRUE(callsAre(2));
  EXPECT_EQ(calls, 1);
}

}  // namespace
}  // namespace zephlin
