#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <exception>
#include <functional>
#include <stdexcept>
#include <string>

#include "KeyboardService/Service/Clients/ListeningSocket.h"
#include "KeyboardService/Service/Clients/Server.h"
#include "KeyboardService/Service/RequestHandler.h"
#include "KeyboardService/Service/VirtualKeyboardBus.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Unit/KeyboardService/Support/RawClient.h"

namespace zephlin {

constexpr std::chrono::milliseconds timeout{500};

/// The effective user for the length of a scope, as root only.
class EffectiveUser {
 public:
  explicit EffectiveUser(uid_t user) : former_(::geteuid()) {
    if (former_ == 0 && ::seteuid(user) != 0) {
      throw std::runtime_error("cannot change the effective user");
    }
  }
  EffectiveUser(const EffectiveUser&) = delete;
  EffectiveUser& operator=(const EffectiveUser&) = delete;
  ~EffectiveUser() {
    if (::seteuid(former_) != 0) {
      std::terminate();
    }
  }

 private:
  uid_t former_;
};

/// A server whose loop the test turns itself, in the same thread.
class ServerTest : public testing::Test {
 protected:
  explicit ServerTest(std::chrono::milliseconds limit = timeout)
      : socket(directory.file("s")),
        log(loop, [](const std::string&) {}),
        registry(log),
        virtualKeyboards(200),
        handler(loop, registry, virtualKeyboards,
                Permissions(::geteuid(), [](uid_t) { return Logins{}; }), log),
        respond([this](std::string_view line, uid_t user, const Server::Reply& reply) {
          handler.respond(line, user, reply);
        }),
        server(loop, socket.takeDescriptor(),
               [this](std::string_view line, uid_t user, const Server::Reply& reply) {
                 respond(line, user, reply);
               },
               {{limit, 4 * limit}, 3, 2}) {
    virtualKeyboards.start(registry);
    registry.onAppeared([this](RegistryID registryID) { server.announce({registryID}); });
  }

  RawClient connect() const { return RawClient(directory.file("s")); }

  /// Turns the loop until the condition holds, a minute at most.
  void turnUntil(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!condition()) {
      if (std::chrono::steady_clock::now() > deadline) {
        throw std::runtime_error("it does not happen");
      }
      sd_event_run(loop.native(), 10'000);
    }
  }

  /// Turns the loop for a while.
  void turnFor(std::chrono::steady_clock::duration time) {
    const auto deadline = std::chrono::steady_clock::now() + time;
    turnUntil([&] { return std::chrono::steady_clock::now() >= deadline; });
  }

  std::string receive(RawClient& client) {
    turnUntil([&] { return client.hasLine(); });
    return client.receiveLine();
  }

  /// Sends a request line and receives the response line.
  std::string ask(RawClient& client, const std::string& request) {
    client.send(request + "\n");
    return receive(client);
  }

  /// Whether the next line is the response to `listRequest`.
  bool receivesListing(RawClient& client) {
    return receive(client).starts_with(R"({"keyboards":[)");
  }

  test::TemporaryDirectory directory;
  EventLoop loop;
  BoundSocket socket;
  LimitedLog log;
  KeyboardRegistry registry;
  VirtualKeyboardBus virtualKeyboards;
  RequestHandler handler;
  Server::Respond respond;  ///< By default, has the handler answer.
  Server server;
};

}  // namespace zephlin
