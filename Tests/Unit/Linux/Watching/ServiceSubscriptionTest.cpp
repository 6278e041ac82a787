#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "Platform/Linux/Watching/ServiceSubscription.h"
#include "Tests/Unit/Linux/Watching/Support/ObservedService.h"

namespace zephlin {
namespace {

using test::FakeService;

/// The service is there from the beginning.
class ServiceSubscriptionTest : public test::ObservedService {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(std::filesystem::path(path_).parent_path());
    service_ = std::make_unique<FakeService>(path_);
    observe();
    ASSERT_TRUE(service_->acceptSubscription());
  }

  std::unique_ptr<FakeService> service_;
};

TEST_F(ServiceSubscriptionTest, CallsForEachKeyboardAndNotForTheFirstConnection) {
  service_->send(keyboardAppeared);
  EXPECT_TRUE(callsAre(1));
  service_->send(keyboardAppeared);
  EXPECT_TRUE(callsAre(2));
}

TEST_F(ServiceSubscriptionTest, TakesLinesInWhateverPiecesTheyCome) {
  service_->send("{\"appea");
  test::runLoopFor(std::chrono::milliseconds(20));
  service_->send("red\":\"1\"}\n{\"appeared\":\"2\"}\n{");
  EXPECT_TRUE(callsAre(2));
  service_->send("\"appeared\":\"3\"}\n");
  EXPECT_TRUE(callsAre(3));
}

TEST_F(ServiceSubscriptionTest, HangsUpAtTheEnd) {
  stopObserving();
  EXPECT_TRUE(service_->isHungUpOn());
}

TEST_F(ServiceSubscriptionTest, HangsUpOnALineWithoutEnd) {
  service_->send(std::string(10000, '{'));
  EXPECT_TRUE(service_->isHungUpOn());
  EXPECT_EQ(calls_, 0);
}

TEST_F(ServiceSubscriptionTest, BelievesNothingBehindRubbish) {
  service_->send(std::string("rubbish\n") + keyboardAppeared);
  EXPECT_TRUE(service_->isHungUpOn());
  EXPECT_EQ(calls_, 0);
}

TEST_F(ServiceSubscriptionTest, TriesAgainAfterRubbish) {
  service_->send("rubbish\n");
  ASSERT_TRUE(service_->acceptSubscription());
  EXPECT_TRUE(callsAre(1));
}

TEST_F(ServiceSubscriptionTest, EndsWithinACall) {
  int calls = 0;
  std::unique_ptr<ServiceSubscription> subscription;
  subscription = std::make_unique<ServiceSubscription>(path_, [&] {
    subscription.reset();
    ++calls;
  });
  ASSERT_TRUE(service_->acceptSubscription());
  service_->send(std::string(keyboardAppeared) + keyboardAppeared);
  EXPECT_TRUE(service_->isHungUpOn());
  EXPECT_EQ(calls, 1);
}

/// What a service may answer that is none of ours.
class ServiceRefusal : public test::ObservedService,
                       public testing::WithParamInterface<const char*> {};

TEST_P(ServiceRefusal, CountsAsNoServiceUntilItIsUnderstood) {
  std::filesystem::create_directories(std::filesystem::path(path_).parent_path());
  FakeService service(path_);
  observe();
  ASSERT_TRUE(service.accept());
  service.send(GetParam());
  ASSERT_TRUE(service.isHungUpOn());
  EXPECT_EQ(calls_, 0);
  ASSERT_TRUE(service.acceptSubscription());
  EXPECT_TRUE(callsAre(1));
}

INSTANTIATE_TEST_SUITE_P(, ServiceRefusal,
                         testing::Values("{\"response\":\"error\",\"text\":\"unknown request\"}\n",
                                         "{\"subscribed\":false}\n", "{\"subscribed\":\"yes\"}\n",
                                         "[\"subscribed\"]\n", "\n", "\xff\xfe\n",
                                         "{\"appeared\":\"100000001\"}\n",
                                         "{\"subscribed\":true}\n{\"appeared\":1}\n",
                                         "{\"subscribed\":true}\n{\"subscribed\":true}\n"));

}  // namespace
}  // namespace zephlin
