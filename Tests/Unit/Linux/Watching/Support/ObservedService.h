#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>

#include "Platform/Linux/Watching/LinuxKeyboard.h"
#include "Tests/Support/FakeService.h"
#include "Tests/Support/QtLoop.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace zephlin::test {

/// Observes the devices of a service at a path of its own.
class ObservedService : public testing::Test {
 protected:
  static constexpr const char* keyboardAppeared = "{\"appeared\":\"100000001\"}\n";

  void observe() {
    observation_ = devices_.observeDeviceAppeared([this] { ++calls_; });
    ASSERT_NE(observation_, nullptr);
  }
  void stopObserving() { observation_.reset(); }
  /// Calls that would be too many have some time to come.
  bool callsAre(int count) {
    const bool enough = eventually([&] { return calls_ >= count; });
    runLoopFor(std::chrono::milliseconds(20));
    return enough && calls_ == count;
  }

  TemporaryDirectory folder_;
  const std::string path_ = folder_.file("run/zephlin/hidd.sock");
  int calls_ = 0;

 private:
  LinuxHidDevices devices_{WindowSystem::X11, [] { return false; }, path_};
  std::unique_ptr<Observation> observation_;
};

}  // namespace zephlin::test
