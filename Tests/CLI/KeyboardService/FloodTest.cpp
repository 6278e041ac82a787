// Many connections of one user that keep the service busy: it answers the others, and rests for
// half of the time.

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <memory>
#include <optional>
#include <stdexcept>

#include "Tests/CLI/KeyboardService/RunningService.h"

namespace zephlin {
namespace {

/// Only root can be another user than the honest one, and have more connections than it may.
const bool isRoot = ::geteuid() == 0;
const std::size_t connections = isRoot ? 150 : 60;

struct Kind {
  const char* name;
  void (*disturb)(std::optional<RawClient>& client);
};

void drip(std::optional<RawClient>& client) {
  client->sendWithoutWaiting(" ");
}

void queueRequests(std::optional<RawClient>& client) {
  for (int count = 0; count < 10; ++count) {
    client->sendWithoutWaiting(listRequest + '\n');
  }
  while (client->hasLine()) {
    client->receiveLine();
  }
}

void reconnect(std::optional<RawClient>& client) {
  client->sendWithoutWaiting(listRequest + '\n');
  client.reset();
}

/// Keeps the connections open for ever, as far as the service lets it.
void flood(const std::string& socketPath, const Kind& kind) {
  if (isRoot && ::setresuid(4242, 4242, 4242) != 0) {
    throw std::runtime_error("cannot become another user");
  }
  std::vector<std::optional<RawClient>> clients(connections);
  for (int round = 0;; ++round) {
    for (auto& client : clients) {
      try {
        if (!client || client->isHungUp()) {
          client.emplace(socketPath);
        }
        kind.disturb(client);
      } catch (const std::exception&) {
        client.reset();
      }
    }
    if (round == 1) {
      std::fputs("flooding\n", stderr);
    }
  }
}

class Flood : public testing::TestWithParam<Kind> {};

TEST_P(Flood, KeepsTheServiceFromNobodyElse) {
  const RunningService service(64);
  std::vector<std::unique_ptr<test::TestProcess>> flooders;
  for (int count = 0; count < 2; ++count) {
    flooders.push_back(
        std::make_unique<test::TestProcess>([&] { flood(service.socketPath(), GetParam()); }));
    flooders.back()->waitForErrors("flooding");
  }
  const double share = service.processorShare([&] {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(1);
    do {
      const test::Outcome honest = service.hidutil({"property", "--get", "A"});
      EXPECT_EQ(honest.status, 0) << honest.errors;
    } while (std::chrono::steady_clock::now() < end);
  });
  EXPECT_LT(share, 0.8);
}

INSTANTIATE_TEST_SUITE_P(, Flood,
                         testing::Values(Kind{"OfDrippingBytes", drip},
                                         Kind{"OfQueuedRequests", queueRequests},
                                         Kind{"OfConnections", reconnect}),
                         [](const auto& instance) { return instance.param.name; });

}  // namespace
}  // namespace zephlin
