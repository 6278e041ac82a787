#include <deque>
#include <vector>

#include "Tests/Unit/KeyboardService/Support/ServerFixture.h"

namespace zephlin {
namespace {

using namespace std::chrono_literals;

/// A server whose requests are answered when the test says so.
class DeferredAnswersTest : public ServerTest {
 protected:
  DeferredAnswersTest() {
    respond = [this](std::string_view line, uid_t /*user*/, const Server::Reply& reply) {
      requests.emplace_back(line);
      replies.push_back(reply);
    };
  }

  void turnUntilAsked(std::size_t count) {
    turnUntil([&] { return requests.size() >= count; });
  }

  std::vector<std::string> requests;
  std::deque<Server::Reply> replies;
};

TEST_F(DeferredAnswersTest, ArriveInTheOrderOfTheRequests) {
  RawClient client = connect();
  client.send("first\nsecond\n");
  turnUntilAsked(1);
  turnFor(50ms);
  EXPECT_EQ(requests, std::vector<std::string>{"first"});
  replies.at(0)(PlugResponse{RegistryID{1}});
  EXPECT_EQ(receive(client), R"({"registryID":"1","response":"plug"})");
  turnUntilAsked(2);
  replies.at(1)(PullResponse{});
  EXPECT_EQ(receive(client), R"({"response":"pull"})");
}

TEST_F(DeferredAnswersTest, OthersAreAnsweredMeanwhile) {
  RawClient slow = connect();
  slow.send("slow\n");
  turnUntilAsked(1);
  RawClient quick = connect();
  quick.send("quick\n");
  turnUntilAsked(2);
  replies.at(1)(PullResponse{});
  EXPECT_EQ(receive(quick), R"({"response":"pull"})");
  EXPECT_FALSE(slow.hasLine());
}

TEST_F(DeferredAnswersTest, MayTakeLongerThanAClientMay) {
  RawClient client = connect();
  client.send("wait");
  turnFor(timeout / 2);
  client.send("\n");
  turnUntilAsked(1);
  turnFor(2 * timeout);
  replies.at(0)(PullResponse{});
  EXPECT_EQ(receive(client), R"({"response":"pull"})");
}

TEST_F(DeferredAnswersTest, AreDroppedIfTheClientHasGone) {
  {
    const RawClient client = connect();
    client.send("going\n");
    turnUntilAsked(1);
  }
  turnFor(50ms);
  replies.at(0)(PullResponse{});
  RawClient other = connect();
  other.send("other\n");
  turnUntilAsked(2);
  replies.at(1)(PullResponse{});
  EXPECT_EQ(receive(other), R"({"response":"pull"})");
}

TEST_F(DeferredAnswersTest, AClientThatHasGoneLeavesRoomForItsUserBeforeItsAnswer) {
  const EffectiveUser user(4242);
  std::vector<RawClient> clients;
  for (std::size_t count = 1; count <= 3; ++count) {
    clients.push_back(connect());
    clients.back().send("going\n");
    turnUntilAsked(count);
  }
  clients.clear();
  turnFor(50ms);
  RawClient next = connect();
  next.send("next\n");
  turnUntilAsked(4);
  replies.at(3)(PullResponse{});
  EXPECT_EQ(receive(next), R"({"response":"pull"})");
}

TEST_F(DeferredAnswersTest, ReachAClientThatSendsNoMore) {
  RawClient client = connect();
  client.send("last\n");
  client.endSending();
  turnUntilAsked(1);
  turnFor(50ms);
  replies.at(0)(PullResponse{});
  EXPECT_EQ(receive(client), R"({"response":"pull"})");
  turnUntil([&] { return client.isClosed(); });
}

TEST_F(DeferredAnswersTest, MaySubscribe) {
  RawClient client = connect();
  client.send("subscribe\n");
  turnUntilAsked(1);
  server.announce({RegistryID{1}});
  replies.at(0)(SubscribeResponse{});
  server.announce({RegistryID{2}});
  EXPECT_EQ(receive(client), R"({"subscribed":true})");
  EXPECT_EQ(receive(client), R"({"appeared":"2"})");
}

TEST(DeferredAnswers, MayComeWhenTheServerHasGone) {
  const test::TemporaryDirectory directory;
  EventLoop loop;
  BoundSocket socket(directory.file("s"));
  Server::Reply late;
  {
    Server server(
        loop, socket.takeDescriptor(),
        [&](std::string_view, uid_t, const Server::Reply& reply) { late = reply; }, ServerLimits{});
    const RawClient client(directory.file("s"));
    client.send("request\n");
    while (!late) {
      sd_event_run(loop.native(), 10'000);
    }
  }
  EXPECT_NO_THROW(late(PullResponse{}));
}

}  // namespace
}  // namespace zephlin
