#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <functional>

#include "KeyboardService/Protocol/Transport.h"
#include "Tests/CLI/KeyboardService/RunningService.h"

namespace zephlin {
namespace {

using Behaviour = std::function<void(int client)>;

void write(int client, const std::string& bytes) {
  ::send(client, bytes.data(), bytes.size(), MSG_NOSIGNAL);
}

void readRequest(int client) {
  char byte = 0;
  while (::recv(client, &byte, 1, 0) == 1 && byte != '\n') {
  }
}

/// A service that behaves in its own way towards the one client that it accepts.
class FakeService {
 public:
  explicit FakeService(const Behaviour& behaviour)
      : listening_(listenAt(socketPath())), process_([this, behaviour] {
          const FileDescriptor client(::accept(listening_.get(), nullptr, nullptr));
          behaviour(client.get());
        }) {}

  [[nodiscard]] std::string socketPath() const { return directory_.file("s"); }

  [[nodiscard]] test::Outcome hidutil() const {
    return test::run({hidutilProgram, "--socket", socketPath(), "property", "--get", "A"});
  }

 private:
  static FileDescriptor listenAt(const std::string& path) {
    FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const SocketAddress address(path);
    EXPECT_EQ(::bind(socket.get(), address.get(), address.size()), 0);
    EXPECT_EQ(::listen(socket.get(), 1), 0);
    return socket;
  }

  test::TemporaryDirectory directory_;
  FileDescriptor listening_;
  test::TestProcess process_;
};

test::Outcome misunderstood(const FakeService& service) {
  return failure("the keyboard service at " + service.socketPath() +
                 " sent a response that cannot be understood; check that hidutil and zephlin-hidd "
                 "are the same version");
}

test::Outcome misbehaving(const FakeService& service, const std::string& how) {
  return failure("the keyboard service at " + service.socketPath() + " " + how +
                 R"(; try again, or restart it as root with "systemctl restart zephlin-hidd")");
}

TEST(HostileService, SilenceIsGivenUpAfterFiveSeconds) {
  const FakeService service([](int) { ::pause(); });
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(service.hidutil(), misbehaving(service, "did not answer within 5 seconds"));
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

TEST(HostileService, ATrickleIsGivenUpToo) {
  const FakeService service([](int client) {
    while (::send(client, " ", 1, MSG_NOSIGNAL) == 1) {
      ::usleep(100'000);
    }
  });
  EXPECT_EQ(service.hidutil(), misbehaving(service, "did not answer within 5 seconds"));
}

TEST(HostileService, AnEndlessLineIsGivenUp) {
  const FakeService service([](int client) {
    const std::string bytes(100'000, 'x');
    while (::send(client, bytes.data(), bytes.size(), MSG_NOSIGNAL) > 0) {
    }
  });
  EXPECT_EQ(service.hidutil(), misbehaving(service, "sent an endless response"));
}

TEST(HostileService, ClosingAtOnceIsSaid) {
  const FakeService service([](int) {});
  EXPECT_EQ(service.hidutil(), misbehaving(service, "closed the connection without a response"));
}

TEST(HostileService, ClosingInTheMiddleOfAnAnswerIsSaid) {
  const FakeService service([](int client) {
    readRequest(client);
    write(client, R"({"response":"get","values":[)");
  });
  EXPECT_EQ(service.hidutil(), misbehaving(service, "closed the connection without a response"));
}

TEST(HostileService, GarbageIsNotUnderstood) {
  for (const char* const answer : {"garbage\n", "\n", "[]\n", "{\"response\":\"pull\"}\n",
                                   "{\"response\":\"get\",\"values\":[{}]}\n", "\xff\xfe\n"}) {
    const FakeService service([answer](int client) {
      readRequest(client);
      write(client, answer);
    });
    EXPECT_EQ(service.hidutil(), misunderstood(service)) << answer;
  }
}

TEST(HostileService, AnErrorTextStaysOneLine) {
  const FakeService service([](int client) {
    readRequest(client);
    write(client, R"({"response":"error","text":"first\nsecond\u001b[2J"})"
                  "\n");
  });
  EXPECT_EQ(service.hidutil(), failure(R"(first\x0asecond\x1b[2J)"));
}

TEST(HostileService, AnErrorTextStaysShort) {
  const FakeService service([](int client) {
    readRequest(client);
    write(client, R"({"response":"error","text":")" + std::string(100'000, 'x') + "\"}\n");
  });
  EXPECT_EQ(service.hidutil(), failure(std::string(1024, 'x') + "…"));
}

}  // namespace
}  // namespace zephlin
