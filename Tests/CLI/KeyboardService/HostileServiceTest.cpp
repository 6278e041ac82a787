// What hidutil says about a keyboard service that misbehaves, that cannot be reached or that could
// not do as asked: why, and what to do next.

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <stdexcept>

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

  [[nodiscard]] test::Outcome hidutil() const { return property("--get", "A"); }
  [[nodiscard]] test::Outcome set() const { return property("--set", R"({"A":1})"); }

 private:
  [[nodiscard]] test::Outcome property(const std::string& option, const std::string& value) const {
    return test::run({hidutilProgram, "--socket", socketPath(), "property", option, value});
  }

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

struct Misbehaviour {
  const char* name;
  Behaviour behaviour;
  const char* message;
};

class HostileServices : public testing::TestWithParam<Misbehaviour> {};

TEST_P(HostileServices, AreGivenUp) {
  const FakeService service(GetParam().behaviour);
  EXPECT_EQ(service.hidutil(), misbehaving(service, GetParam().message));
}

void trickle(int client) {
  while (::send(client, " ", 1, MSG_NOSIGNAL) == 1) {
    ::usleep(100'000);
  }
}

void sendWithoutEnd(int client) {
  const std::string bytes(100'000, 'x');
  while (::send(client, bytes.data(), bytes.size(), MSG_NOSIGNAL) > 0) {
  }
}

void closeInTheMiddle(int client) {
  readRequest(client);
  write(client, R"({"response":"get","values":[)");
}

INSTANTIATE_TEST_SUITE_P(
    , HostileServices,
    testing::Values(Misbehaviour{"Trickle", trickle, "did not answer within 5 seconds"},
                    Misbehaviour{"EndlessLine", sendWithoutEnd, "sent an endless response"},
                    Misbehaviour{"CloseAtOnce", [](int) {},
                                 "closed the connection without a response"},
                    Misbehaviour{"CloseInTheMiddle", closeInTheMiddle,
                                 "closed the connection without a response"}),
    [](const auto& instance) { return instance.param.name; });

Behaviour answer(const std::string& line) {
  return [line](int client) {
    readRequest(client);
    write(client, line + '\n');
  };
}

TEST(HostileService, GarbageIsNotUnderstood) {
  for (const char* const line : {"garbage", "", "[]", R"({"response":"pull"})",
                                 R"({"response":"get","values":[{}]})", "\xff\xfe"}) {
    const FakeService service(answer(line));
    EXPECT_EQ(service.hidutil(), misunderstood(service)) << line;
  }
}

TEST(HostileService, AnErrorTextStaysOneShortLine) {
  const auto errorText = [](const std::string& text) {
    return FakeService(answer(R"({"response":"error","text":")" + text + "\"}")).hidutil();
  };
  EXPECT_EQ(errorText(R"(first\nsecond\u001b[2J)"), failure(R"(first\x0asecond\x1b[2J)"));
  EXPECT_EQ(errorText(std::string(100'000, 'x')), failure(std::string(1024, 'x') + "…"));
}

constexpr const char* twoKeyboardsUnset =
    R"json("unset":[{"registryID":"2","reason":"held by another program: keyd (pid 412)"},)json"
    R"json({"registryID":"3","reason":"a key\nis held down"}]})json";

TEST(UnsetKeyboards, AreNamedBesideTheOthers) {
  const FakeService service(
      answer(std::string(R"({"response":"set","keyboards":["1"],)") + twoKeyboardsUnset));
  EXPECT_EQ(service.set(),
            (test::Outcome{0,
                           "RegistryID   Key   Value\n"
                           "1            A     1\n",
                           "hidutil: keyboard 2 is not set: held by another program: keyd (pid "
                           "412)\n"
                           "hidutil: keyboard 3 is not set: a key\\x0ais held down\n"}));
}

TEST(UnsetKeyboards, AreAFailureIfThereAreNoOthers) {
  const FakeService service(
      answer(std::string(R"({"response":"set","keyboards":[],)") + twoKeyboardsUnset));
  EXPECT_EQ(service.set(),
            failure("keyboard 2 is not set: held by another program: keyd (pid 412)\n"
                    "hidutil: keyboard 3 is not set: a key\\x0ais held down"));
}

/// The file modes mean nothing to root.
void stopBeingRoot() {
  if (::geteuid() == 0 && ::setresuid(4242, 4242, 4242) != 0) {
    throw std::runtime_error("cannot become another user");
  }
}

TEST(UnreachableService, AbsenceIsSaidWithWhatToDo) {
  const test::TemporaryDirectory directory;
  const std::string socket = directory.file("s");
  EXPECT_EQ(test::run({hidutilProgram, "--socket", socket, "list"}),
            absence(socket, "No such file or directory"));
}

TEST(UnreachableService, TheSocketOfAKilledOneIsAnAbsenceToo) {
  RunningService service;
  service.process().send(SIGKILL);
  service.process().wait();
  EXPECT_EQ(service.hidutil({"list"}), absence(service.socketPath(), "Connection refused"));
}

TEST(UnreachableService, ASocketThatIsForbiddenIsSaidWithWhatToDo) {
  const RunningService service;
  ASSERT_EQ(::chmod(service.socketPath().c_str(), 0), 0);
  EXPECT_EQ(test::TestProcess(service.command({"list"}), stopBeingRoot).wait(),
            failure("no permission to talk to the keyboard service at " + service.socketPath() +
                    R"( (Permission denied); everyone should have it: restart it as root with )"
                    R"("systemctl restart zephlin-hidd.socket")"));
}

}  // namespace
}  // namespace zephlin
