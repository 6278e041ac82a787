#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <memory>

#include "Tests/CLI/KeyboardService/RunningService.h"

namespace zephlin {
namespace {

const std::string listAnswerStart = R"({"keyboards":[)";

bool isServed(RawClient& client) {
  return client.ask(listRequest).starts_with(listAnswerStart);
}

TEST(HostileClients, AStalledOneDoesNotKeepOthersWaiting) {
  const RunningService service;
  const RawClient silent = service.connect();
  const RawClient halfway = service.connect();
  halfway.send(R"({"request":)");
  const RawClient deaf = service.connect();
  for (int count = 0; count < 1000; ++count) {
    deaf.sendWithoutWaiting(listRequest + "\n");
  }
  EXPECT_EQ(service.hidutil({"list"}).status, 0);
}

TEST(HostileClients, AsManyAtOnceAsThereMayBeAreAllServed) {
  const RunningService service;
  const std::size_t many = ::geteuid() == 0 ? 500 : 64;
  std::vector<RawClient> clients;
  clients.reserve(many);
  while (clients.size() < many) {
    clients.push_back(service.connect());
  }
  for (const RawClient& each : clients) {
    each.send(listRequest + "\n");
  }
  for (RawClient& each : clients) {
    EXPECT_TRUE(each.receiveLine().starts_with(listAnswerStart));
  }
}

TEST(HostileClients, AReaderOfTheLogThatHasStoppedStopsNobody) {
  const RunningService service;
  // More than a pipe holds.
  std::string properties;
  for (int count = 0; count < 60; ++count) {
    properties += (count == 0 ? "\"" : ",\"") + std::to_string(count) + "\":0";
  }
  RawClient client = service.connect();
  for (int count = 0; count < 300; ++count) {
    client.ask(R"({"request":"set","matching":{},"properties":{)" + properties + "}}");
  }
  EXPECT_TRUE(isServed(client));
}

TEST(HostileClients, HalfALineIsNoRequest) {
  const RunningService service(1);
  {
    const RawClient client = service.connect();
    client.send(R"({"request":"plug"})");
  }
  RawClient polite = service.connect();
  polite.send(R"({"request":"plug"})");
  polite.endSending();
  polite.waitForClose();
  EXPECT_EQ(service.hidutil({"plug"}).output, "100000002\n");
}

TEST(HostileClients, ALineThatIsTooLongIsAnsweredAndTheConnectionCloses) {
  const RunningService service;
  RawClient client = service.connect();
  client.send(std::string(std::size_t{64} * 1024 + 1, 'x'));
  EXPECT_EQ(
      client.receiveLine(),
      R"({"response":"error","text":"the request is longer than 65536 bytes; ask for less at )"
      R"(once"})");
  client.waitForClose();
  EXPECT_EQ(service.hidutil({"list"}).status, 0);
}

TEST(HostileClients, NonsenseIsAnsweredAndTheConnectionStays) {
  const RunningService service;
  RawClient client = service.connect();
  for (const char* const line : {"", "nonsense", "[]", "{\"request\":\"dance\"}", "\xff\xfe"}) {
    EXPECT_TRUE(client.ask(line).starts_with(R"({"response":"error",)")) << line;
  }
  EXPECT_TRUE(isServed(client));
}

TEST(HostileClients, OneThatIsKilledInTheMiddleOfAnAnswerHarmsNoOther) {
  const RunningService service(256);
  test::TestProcess client([&] {
    const RawClient connection = service.connect();
    for (int count = 0; count < 100; ++count) {
      connection.sendWithoutWaiting(listRequest + "\n");
    }
    std::fputs("asked\n", stderr);
    ::pause();
  });
  client.waitForErrors("asked");
  client.send(SIGKILL);
  EXPECT_EQ(client.wait().status, -SIGKILL);
  EXPECT_EQ(service.hidutil({"list"}).status, 0);
}

TEST(HostileClients, MoreThanThereAreDescriptorsForWaitTheirTurn) {
  RunningService service(1, [] {
    const rlimit few{32, 32};
    ::setrlimit(RLIMIT_NOFILE, &few);
  });
  std::vector<std::unique_ptr<RawClient>> clients;
  clients.push_back(std::make_unique<RawClient>(service.connect()));
  RawClient& first = *clients.front();
  // UBSan needs a descriptor to look at a type for the first time.
  EXPECT_TRUE(isServed(first));
  while (clients.size() < 64) {
    clients.push_back(std::make_unique<RawClient>(service.connect()));
    clients.back()->send(listRequest + "\n");
  }

  // The service is idle while it can accept nobody: of two seconds it uses less than one.
  EXPECT_LT(service.processorShare([] { ::sleep(2); }), 0.5);
  EXPECT_TRUE(isServed(first));

  // Each one that leaves makes room for the next, until the last one has been served.
  while (clients.size() > 1) {
    clients.erase(clients.begin());
  }
  EXPECT_TRUE(clients.front()->receiveLine().starts_with(listAnswerStart));
  clients.clear();
  EXPECT_EQ(service.hidutil({"list"}).status, 0);
}

}  // namespace
}  // namespace zephlin
