#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <chrono>
#include <filesystem>
#include <optional>

#include "Tests/Unit/Linux/Watching/Support/ObservedService.h"

namespace zephlin {
namespace {

using namespace std::chrono_literals;
using test::FakeService;

class ServiceRestart : public test::ObservedService {
 protected:
  void makeFolder() {
    std::filesystem::create_directories(std::filesystem::path(path_).parent_path());
  }
  void removeFolder() { std::filesystem::remove_all(folder_.path() / "run"); }
  /// A service at the path, or another one in its stead, that the client subscribes at.
  void startService() {
    makeFolder();
    std::filesystem::remove(path_);
    service_.emplace(path_);
    ASSERT_TRUE(service_->acceptSubscription());
  }

  std::optional<FakeService> service_;
};

TEST_F(ServiceRestart, IsSeenInAFolderThatIsThere) {
  makeFolder();
  observe();
  test::runLoopFor(20ms);
  startService();
  EXPECT_TRUE(callsAre(1));
}

TEST_F(ServiceRestart, IsSeenWhereTheFoldersAreMadeFirst) {
  observe();
  test::runLoopFor(20ms);
  std::filesystem::create_directory(folder_.path() / "run");
  test::runLoopFor(20ms);
  startService();
  EXPECT_TRUE(callsAre(1));
}

TEST_F(ServiceRestart, IsSeenWhereTheFoldersAreMadeAtOnce) {
  observe();
  startService();
  EXPECT_TRUE(callsAre(1));
}

TEST_F(ServiceRestart, CallsOnceEachTime) {
  makeFolder();
  service_.emplace(path_);
  observe();
  ASSERT_TRUE(service_->acceptSubscription());
  service_.reset();
  startService();
  EXPECT_TRUE(callsAre(1));
  service_.reset();
  startService();
  EXPECT_TRUE(callsAre(2));
  service_->send(keyboardAppeared);
  EXPECT_TRUE(callsAre(3));
}

TEST_F(ServiceRestart, IsSeenWhereSystemdKeepsTheSocket) {
  makeFolder();
  service_.emplace(path_);
  observe();
  ASSERT_TRUE(service_->acceptSubscription());
  service_->hangUp();
  ASSERT_TRUE(service_->acceptSubscription());
  EXPECT_TRUE(callsAre(1));
}

TEST_F(ServiceRestart, IsSeenWhereTheFolderGoesWithTheService) {
  makeFolder();
  service_.emplace(path_);
  observe();
  ASSERT_TRUE(service_->acceptSubscription());
  service_.reset();
  removeFolder();
  // By then nothing but the folder is waited for.
  test::runLoopFor(250ms);
  startService();
  EXPECT_TRUE(callsAre(1));
}

TEST_F(ServiceRestart, IsSeenWhereTheSocketIsBoundBeforeItIsListenedAt) {
  makeFolder();
  observe();
  FakeService service(path_, FakeService::Socket::Bound);
  test::runLoopFor(150ms);
  service.listen();
  ASSERT_TRUE(service.acceptSubscription());
  EXPECT_TRUE(callsAre(1));
}

TEST_F(ServiceRestart, IsNoOccasionForOtherFiles) {
  makeFolder();
  observe();
  std::filesystem::create_directory(path_ + ".lock");
  test::runLoopFor(20ms);
  startService();
  EXPECT_TRUE(callsAre(1));
}

TEST_F(ServiceRestart, IsTriedAtGrowingIntervalsWhereItFailsAgainAndAgain) {
  makeFolder();
  FakeService service(path_);
  QElapsedTimer elapsed;
  elapsed.start();
  observe();
  for (int connections = 0; connections < 4; ++connections) {
    ASSERT_TRUE(service.accept());
    service.hangUp();
  }
  // 100, 200 and 400 ms, and what Qt's timers may come too early.
  EXPECT_GE(elapsed.elapsed(), 650);
  EXPECT_EQ(calls_, 0);
}

}  // namespace
}  // namespace zephlin
