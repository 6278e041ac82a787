#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "KeyboardService/Protocol/Transport.h"
#include "Tests/CLI/KeyboardService/RunningService.h"

namespace zephlin {
namespace {

using std::filesystem::exists;

test::Outcome serviceFailure(const std::string& message) {
  return {1, "", "zephlin-hidd: " + message + "\n"};
}

/// A socket that is bound to the path; it stays there as a file when it is closed.
FileDescriptor bindTo(const std::string& path, int type = SOCK_STREAM) {
  FileDescriptor socket(::socket(AF_UNIX, type | SOCK_CLOEXEC, 0));
  const SocketAddress address(path);
  EXPECT_EQ(::bind(socket.get(), address.get(), address.size()), 0);
  return socket;
}

TEST(ServiceStart, SigtermAndSigintEndItCleanly) {
  for (const int signal : {SIGTERM, SIGINT}) {
    RunningService service;
    const RawClient client = service.connect();
    service.process().send(signal);
    EXPECT_EQ(service.process().wait().status, 0);
    EXPECT_FALSE(exists(service.socketPath()));
    EXPECT_FALSE(exists(service.socketPath() + ".lock"));
  }
}

TEST(ServiceStart, ASecondInstanceGivesUpAndHarmsNothing) {
  const RunningService service;
  EXPECT_EQ(
      test::run({serviceProgram, "--socket", service.socketPath()}),
      serviceFailure("another instance is running on " + service.socketPath() + "; stop it first"));
  EXPECT_EQ(service.hidutil({"list"}).status, 0);
  EXPECT_TRUE(exists(service.socketPath() + ".lock"));
}

TEST(ServiceStart, AnInstanceWithoutLockFileIsNoticedToo) {
  const RunningService service;
  std::filesystem::remove(service.socketPath() + ".lock");
  EXPECT_EQ(
      test::run({serviceProgram, "--socket", service.socketPath()}),
      serviceFailure("another instance is running on " + service.socketPath() + "; stop it first"));
  EXPECT_EQ(service.hidutil({"list"}).status, 0);
}

TEST(ServiceStart, WhatAKilledInstanceLeftBehindIsReplaced) {
  const test::TemporaryDirectory directory;
  const std::string socket = directory.file("s");
  const std::vector<std::string> command{serviceProgram, "--socket", socket};
  test::TestProcess killed(command);
  killed.waitForErrors("ready");
  killed.send(SIGKILL);
  EXPECT_EQ(killed.wait().status, -SIGKILL);
  EXPECT_TRUE(exists(socket));
  test::TestProcess next(command);
  next.waitForErrors("ready");
  EXPECT_EQ(test::run({hidutilProgram, "--socket", socket, "list"}).status, 0);
}

TEST(ServiceStart, AFileThatIsNoSocketIsLeftAlone) {
  const test::TemporaryDirectory directory;
  const std::string path = directory.file("s");
  std::ofstream(path) << "precious";
  EXPECT_EQ(
      test::run({serviceProgram, "--socket", path}),
      serviceFailure(path + " exists and is not a socket; move it away or choose another place "
                            "with --socket"));
  std::string content;
  std::ifstream(path) >> content;
  EXPECT_EQ(content, "precious");
  EXPECT_FALSE(exists(path + ".lock"));
}

TEST(ServiceStart, TheLastLevelOfTheDirectoryIsMadeAndRemoved) {
  const test::TemporaryDirectory directory;
  const std::string socket = directory.file("made/s");
  test::TestProcess service({serviceProgram, "--socket", socket}, [] { ::umask(077); });
  service.waitForErrors("ready");
  struct stat made {};
  ASSERT_EQ(::stat(directory.file("made").c_str(), &made), 0);
  EXPECT_EQ(made.st_mode & 0777U, 0755U);
  service.send(SIGTERM);
  EXPECT_EQ(service.wait().status, 0);
  EXPECT_FALSE(exists(directory.file("made")));
}

TEST(ServiceStart, ADirectoryThatSomethingElseHasMovedIntoStays) {
  const test::TemporaryDirectory directory;
  test::TestProcess service({serviceProgram, "--socket", directory.file("made/s")});
  service.waitForErrors("ready");
  std::ofstream(directory.file("made/other")) << "x";
  service.send(SIGTERM);
  EXPECT_EQ(service.wait().status, 0);
  EXPECT_TRUE(exists(directory.file("made/other")));
}

TEST(ServiceStart, MoreThanTheLastLevelIsNotMade) {
  const test::TemporaryDirectory directory;
  EXPECT_EQ(test::run({serviceProgram, "--socket", directory.file("a/b/s")}),
            serviceFailure("cannot create the directory " + directory.file("a/b") +
                           " (No such file or directory); run zephlin-hidd as root, or choose "
                           "another place with --socket"));
}

TEST(ServiceStart, ASocketPathHasToFit) {
  const test::TemporaryDirectory directory;
  const std::string path = directory.file(std::string(108, 's'));
  EXPECT_EQ(test::run({serviceProgram, "--socket", path}),
            serviceFailure("the socket path \"" + path +
                           "\" is not usable; give one of 1 to 107 bytes with --socket"));
}

/// What systemd does to a service that it starts for a socket: descriptors from 3 on, and their
/// number and the process in the environment.
test::TestProcess::Body handOver(const std::vector<int>& sockets) {
  return [sockets] {
    std::vector<int> safe;
    safe.reserve(sockets.size());
    for (const int each : sockets) {
      safe.push_back(::fcntl(each, F_DUPFD, 100));
    }
    for (std::size_t index = 0; index < safe.size(); ++index) {
      ::dup2(safe[index], static_cast<int>(3 + index));
    }
    ::setenv("LISTEN_PID", std::to_string(::getpid()).c_str(), 1);
    ::setenv("LISTEN_FDS", std::to_string(sockets.size()).c_str(), 1);
  };
}

TEST(ServiceStart, ASocketFromSystemdIsServedAndLeftInPlace) {
  const test::TemporaryDirectory directory;
  const std::string path = directory.file("s");
  const FileDescriptor listening = bindTo(path);
  ASSERT_EQ(::listen(listening.get(), 5), 0);
  test::TestProcess service({serviceProgram, "--virtual-keyboards", "1"},
                            handOver({listening.get()}));
  service.waitForErrors("ready on " + path + " with 1 keyboard");
  EXPECT_EQ(test::run({hidutilProgram, "--socket", path, "plug"}),
            (test::Outcome{0, "100000002\n", ""}));
  service.send(SIGTERM);
  EXPECT_EQ(service.wait().status, 0);
  EXPECT_TRUE(exists(path));
  EXPECT_FALSE(exists(path + ".lock"));
}

TEST(ServiceStart, AHandRunInstanceDoesNotTakeTheSocketOfSystemd) {
  const test::TemporaryDirectory directory;
  const std::string path = directory.file("s");
  const FileDescriptor listening = bindTo(path);
  ASSERT_EQ(::listen(listening.get(), 5), 0);
  EXPECT_EQ(test::run({serviceProgram, "--socket", path}),
            serviceFailure("another instance is running on " + path + "; stop it first"));
  EXPECT_TRUE(exists(path));
}

TEST(ServiceStart, AnythingButOneListeningStreamSocketFromSystemdIsRefused) {
  const test::TemporaryDirectory directory;
  const FileDescriptor first = bindTo(directory.file("first"));
  ASSERT_EQ(::listen(first.get(), 5), 0);
  const FileDescriptor second = bindTo(directory.file("second"));
  ASSERT_EQ(::listen(second.get(), 5), 0);
  const FileDescriptor datagrams = bindTo(directory.file("datagrams"), SOCK_DGRAM);
  const FileDescriptor silent = bindTo(directory.file("silent"));
  const FileDescriptor file(::open("/dev/null", O_RDONLY | O_CLOEXEC));
  for (const std::vector<int>& sockets :
       {std::vector{first.get(), second.get()}, std::vector{datagrams.get()},
        std::vector{silent.get()}, std::vector{file.get()}}) {
    test::TestProcess service({serviceProgram}, handOver(sockets));
    EXPECT_EQ(service.wait(),
              serviceFailure("socket activation needs exactly one listening Unix stream socket; "
                             "fix the socket unit"));
  }
}

TEST(ServiceStart, SystemdIsToldOfTheBeginningAndTheEnd) {
  const test::TemporaryDirectory directory;
  const std::string path = directory.file("notify");
  const FileDescriptor notifications = bindTo(path, SOCK_DGRAM);
  RunningService service(0, [&] { ::setenv("NOTIFY_SOCKET", path.c_str(), 1); });
  service.stop();
  char text[64] = {};
  EXPECT_GT(::recv(notifications.get(), text, sizeof text - 1, MSG_DONTWAIT), 0);
  EXPECT_STREQ(text, "READY=1");
  EXPECT_GT(::recv(notifications.get(), text, sizeof text - 1, MSG_DONTWAIT), 0);
  EXPECT_EQ(std::string(text).find("STOPPING=1"), 0U);
}

}  // namespace
}  // namespace zephlin
