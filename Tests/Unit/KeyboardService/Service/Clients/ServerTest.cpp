#include <string>
#include <vector>

#include "KeyboardService/Protocol/Transport.h"
#include "Tests/Unit/KeyboardService/Support/ServerFixture.h"

namespace zephlin {
namespace {

using namespace std::chrono_literals;
using std::chrono::steady_clock;

TEST_F(ServerTest, AnswersRequestsInTheirOrder) {
  RawClient client = connect();
  client.send("{\"request\":\"pull\",\"registryID\":\"100000001\"}\nnonsense\n" + listRequest +
              "\n");
  EXPECT_EQ(receive(client), R"({"response":"pull"})");
  EXPECT_EQ(receive(client).find(R"({"response":"error")"), 0U);
  EXPECT_TRUE(receivesListing(client));
}

TEST_F(ServerTest, AnswersAClientThatSendsNoMore) {
  RawClient client = connect();
  client.send(listRequest + "\n" + listRequest + "\n");
  client.endSending();
  receive(client);
  receive(client);
  turnUntil([&] { return client.isClosed(); });
}

TEST_F(ServerTest, DropsAClientThatLeavesARequestUnfinished) {
  const auto start = steady_clock::now();
  RawClient client = connect();
  client.send("{");
  turnUntil([&] { return client.isClosed(); });
  EXPECT_GE(steady_clock::now() - start, timeout - 10ms);
}

TEST_F(ServerTest, EveryByteOfARequestRestartsTheTimeout) {
  RawClient client = connect();
  const auto start = steady_clock::now();
  const auto deadline = start + 2 * timeout;
  while (steady_clock::now() < deadline) {
    client.send(" ");
    turnFor(20ms);
  }
  client.send(listRequest + "\n");
  EXPECT_TRUE(receivesListing(client));
}

TEST_F(ServerTest, DropsAClientThatDripsBytesWithoutEnd) {
  const RawClient client = connect();
  const auto start = steady_clock::now();
  turnUntil([&] {
    turnFor(20ms);
    if (!client.isHungUp()) {
      client.send(" ");
    }
    return client.isHungUp();
  });
  EXPECT_GE(steady_clock::now() - start, 4 * timeout - 10ms);
}

TEST_F(ServerTest, DropsAClientThatTakesNoAnswers) {
  RawClient client = connect();
  std::string requests;
  for (int count = 0; count < 100; ++count) {
    requests += listRequest + "\n";
  }
  const auto start = steady_clock::now();
  client.send(requests);
  RawClient other = connect();
  other.send(listRequest + "\n");
  EXPECT_TRUE(receivesListing(other));
  turnUntil([&] { return client.isHungUp(); });
  EXPECT_GE(steady_clock::now() - start, timeout - 10ms);
}

TEST_F(ServerTest, KeepsAClientThatHasNothingToSay) {
  RawClient client = connect();
  ask(client, listRequest);
  turnFor(2 * timeout);
  client.send(listRequest + "\n");
  EXPECT_TRUE(receivesListing(client));
}

/// A server that does not drop the client while a busy machine holds the test up.
class PatientServerTest : public ServerTest {
 protected:
  PatientServerTest() : ServerTest(1min) {}
};

TEST_F(PatientServerTest, ReadsNoFurtherWhileAnAnswerIsNotTaken) {
  const RawClient client = connect();
  const std::string requests = listRequest + std::string(1000, ' ') + "\n";
  constexpr std::size_t moreThanAllBuffersHold = 4'000'000;
  std::size_t accepted = 0;
  int turnsWithoutProgress = 0;
  while (accepted < moreThanAllBuffersHold && turnsWithoutProgress < 20) {
    const std::size_t sent = client.sendWithoutWaiting(requests);
    accepted += sent;
    turnsWithoutProgress = sent == 0 ? turnsWithoutProgress + 1 : 0;
    sd_event_run(loop.native(), 1000);
  }
  EXPECT_LT(accepted, moreThanAllBuffersHold);
}

TEST_F(ServerTest, ALineOfTheLongestKindIsRead) {
  RawClient client = connect();
  client.send(listRequest + std::string(maximumRequestBytes - listRequest.size(), ' ') + "\n");
  EXPECT_TRUE(receivesListing(client));
}

TEST_F(ServerTest, ALineThatIsTooLongIsAnsweredAndEndsTheConnection) {
  RawClient client = connect();
  client.send(std::string(maximumRequestBytes + 1, 'x'));
  EXPECT_EQ(
      receive(client),
      R"({"response":"error","text":"the request is longer than 65536 bytes; ask for less at once"})");
  turnUntil([&] { return client.isClosed(); });
}

TEST_F(ServerTest, AUserHasOnlySoManyConnections) {
  const EffectiveUser user(4242);
  std::vector<RawClient> clients;
  for (int count = 0; count < 3; ++count) {
    clients.push_back(connect());
    clients.back().send(listRequest + "\n");
    EXPECT_TRUE(receivesListing(clients.back()));
  }
  RawClient oneMore = connect();
  EXPECT_EQ(
      receive(oneMore),
      R"({"response":"error","text":"connection limit reached (3 per user); close some connections"})");
  turnUntil([&] { return oneMore.isClosed(); });

  clients.pop_back();
  turnFor(50ms);
  RawClient again = connect();
  again.send(listRequest + "\n");
  EXPECT_TRUE(receivesListing(again));
}

TEST_F(ServerTest, ManyRequestsDelayOnlyTheConnectionsThatSendThem) {
  std::size_t requests = 0;
  respond = [&](std::string_view, uid_t, const Server::Reply& reply) {
    ++requests;
    reply(PullResponse{});
  };
  std::string many;
  for (int count = 0; count < 1000; ++count) {
    many += "flood\n";
  }
  std::vector<RawClient> flood;
  {
    const EffectiveUser user(4242);
    for (int count = 0; count < 2; ++count) {
      flood.push_back(connect());
      flood.back().send(many);
    }
  }
  turnUntil([&] { return requests >= 10; });
  RawClient honest = connect();
  const std::size_t before = requests;
  honest.send("honest\n");
  EXPECT_EQ(receive(honest), R"({"response":"pull"})");
  // At most one of each of the two for each of its own three turns: accept, receive, answer.
  EXPECT_LT(requests - before, 20U);
}

}  // namespace
}  // namespace zephlin
