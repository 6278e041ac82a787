#include <memory>
#include <vector>

#include "Tests/Unit/KeyboardService/Support/ServerFixture.h"

namespace zephlin {
namespace {

using namespace std::chrono_literals;
using std::chrono::steady_clock;

const std::string subscribeRequest = R"({"request":"subscribe"})";
const std::string subscribed = R"({"subscribed":true})";

class SubscriptionTest : public ServerTest {
 protected:
  RawClient subscriber() {
    RawClient client = connect();
    EXPECT_EQ(ask(client, subscribeRequest), subscribed);
    return client;
  }

  /// Plugs a keyboard and returns the line that subscribers are told.
  std::string plug() {
    const RegistryID registryID =
        registry.find({&virtualKeyboards, virtualKeyboards.plug()}).value();
    return R"({"appeared":")" + toText(registryID) + R"("})";
  }

  /// Plugs and pulls one keyboard after the other.
  void plugMany(int count) {
    while (count-- > 0) {
      virtualKeyboards.pull(virtualKeyboards.plug());
    }
  }

  /// Plugs on until the server has given the client up, some ten times its bounds at most.
  bool isGivenUp(const RawClient& client) {
    for (int tries = 0; tries < 100 && !client.isHungUp(); ++tries) {
      plugMany(1000);
    }
    return client.isHungUp();
  }
};

TEST_F(SubscriptionTest, EverySubscriberIsToldOfEachKeyboardInOrder) {
  RawClient first = subscriber();
  RawClient second = subscriber();
  const std::string one = plug();
  const std::string two = plug();
  EXPECT_NE(one, two);
  for (RawClient* const client : {&first, &second}) {
    EXPECT_EQ(receive(*client), one);
    EXPECT_EQ(receive(*client), two);
  }
}

TEST_F(SubscriptionTest, OthersAreToldNothing) {
  RawClient other = connect();
  ask(other, listRequest);
  RawClient client = subscriber();
  const std::string appeared = plug();
  EXPECT_EQ(receive(client), appeared);
  turnFor(20ms);
  EXPECT_FALSE(other.hasLine());
}

TEST_F(SubscriptionTest, WhatAppearedBeforeIsListedAndWhatAppearsAfterwardsIsTold) {
  RawClient client = connect();
  client.send(subscribeRequest + "\n");
  const std::string before = plug();  // The request has been sent and is not read yet.
  EXPECT_EQ(receive(client), subscribed);
  const std::string after = plug();
  EXPECT_EQ(receive(client), after);
  const RegistryID listed = registry.list({}).at(200).registryID;
  EXPECT_EQ(before, R"({"appeared":")" + toText(listed) + R"("})");
}

TEST_F(SubscriptionTest, ASubscriberMayBeSilentBeyondTheTimeout) {
  RawClient client = subscriber();
  turnFor(2 * timeout);
  const std::string appeared = plug();
  EXPECT_EQ(receive(client), appeared);
}

TEST_F(SubscriptionTest, LinesMayLieUntakenBeyondTheTimeout) {
  RawClient client = subscriber();
  const std::string first = plug();
  plugMany(400);  // More than a socket holds of such short lines, less than the bound.
  turnFor(2 * timeout);
  EXPECT_FALSE(client.isHungUp());
  EXPECT_EQ(receive(client), first);
  for (int count = 0; count < 400; ++count) {
    receive(client);
  }
  const std::string last = plug();
  EXPECT_EQ(receive(client), last);
}

TEST_F(SubscriptionTest, ASubscriberThatNeverTakesItsLinesIsGivenUpAndTheOthersAreNot) {
  const RawClient stalled = subscriber();
  EXPECT_TRUE(isGivenUp(stalled));
  RawClient other = subscriber();
  const std::string appeared = plug();
  EXPECT_EQ(receive(other), appeared);
}

TEST_F(SubscriptionTest, ASubscriberThatGoesAwayDoesNotKeepTheOthersFromTheirLines) {
  auto before = std::make_unique<RawClient>(subscriber());
  RawClient client = subscriber();
  before.reset();  // The server learns of it when it tells it.
  const std::string one = plug();
  const std::string two = plug();
  EXPECT_EQ(receive(client), one);
  EXPECT_EQ(receive(client), two);
}

TEST_F(SubscriptionTest, EndsWhenTheClientSendsNoMore) {
  RawClient client = subscriber();
  client.endSending();
  turnUntil([&] { return client.isClosed(); });
}

TEST_F(SubscriptionTest, EndsWithLinesUntakenWhenTheClientSendsNoMore) {
  const RawClient client = subscriber();
  plugMany(400);
  client.endSending();
  turnUntil([&] { return client.isHungUp(); });
}

TEST_F(SubscriptionTest, AnotherRequestIsRefusedBehindTheLinesAndEndsTheConnection) {
  RawClient client = subscriber();
  plugMany(400);  // More than the socket holds.
  client.send(listRequest + "\n");
  turnFor(20ms);
  for (int count = 0; count < 400; ++count) {
    EXPECT_EQ(receive(client).find(R"({"appeared":")"), 0U);
  }
  EXPECT_EQ(receive(client),
            R"({"response":"error","text":"a subscribed connection takes no more requests; open )"
            R"(another connection"})");
  turnUntil([&] { return client.isClosed(); });
}

TEST_F(SubscriptionTest, ARequestBehindTheSubscriptionIsRefusedToo) {
  RawClient client = connect();
  client.send(subscribeRequest + "\n" + subscribeRequest + "\n");
  EXPECT_EQ(receive(client), subscribed);
  EXPECT_EQ(receive(client).find(R"({"response":"error","text":"a subscribed connection)"), 0U);
  turnUntil([&] { return client.isClosed(); });
}

TEST_F(SubscriptionTest, SubscriptionsOfAUserLeaveRoomForRequests) {
  std::vector<RawClient> ofRoot;
  while (::geteuid() == 0 && ofRoot.size() < 3) {
    ofRoot.push_back(subscriber());
  }
  const EffectiveUser user(4242);
  std::vector<RawClient> clients;
  clients.push_back(subscriber());
  clients.push_back(subscriber());
  RawClient third = connect();
  third.send(subscribeRequest + "\n" + listRequest + "\n");
  EXPECT_EQ(receive(third),
            R"({"response":"error","text":"subscription limit reached (2 per user); end some )"
            R"(subscriptions"})");
  EXPECT_TRUE(receivesListing(third));

  clients.pop_back();
  turnFor(50ms);
  EXPECT_EQ(ask(third, subscribeRequest), subscribed);
}

}  // namespace
}  // namespace zephlin
