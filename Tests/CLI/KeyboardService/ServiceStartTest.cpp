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

test::Outcome startAt(const std::string& path) {
  return test::run({serviceProgram, "--socket", path});
}

test::Outcome anotherInstance(const std::string& path) {
  return serviceFailure("another instance is running on " + path + "; stop it first");
}

/// A socket that is bound to the path; it stays there as a file when it is closed.
FileDescriptor bindTo(const std::string& path, int type = SOCK_STREAM) {
  FileDescriptor socket(::socket(AF_UNIX, type | SOCK_CLOEXEC, 0));
  const SocketAddress address(path);
  EXPECT_EQ(::bind(socket.get(), address.get(), address.size()), 0);
  return socket;
}

class ServiceStart : public testing::Test {
 protected:
  test::TemporaryDirectory directory;
  std::string path = directory.file("s");
};

TEST_F(ServiceStart, SigtermAndSigintEndItCleanly) {
  for (const int signal : {SIGTERM, SIGINT}) {
    RunningService service;
    const RawClient client = service.connect();
    service.process().send(signal);
    EXPECT_EQ(service.process().wait().status, 0);
    EXPECT_FALSE(exists(service.socketPath()));
    EXPECT_FALSE(exists(service.socketPath() + ".lock"));
  }
}

TEST_F(ServiceStart, ASecondInstanceGivesUpWithOrWithoutALockFileAndHarmsNothing) {
  const RunningService service;
  const std::string lock = service.socketPath() + ".lock";
  EXPECT_EQ(startAt(service.socketPath()), anotherInstance(service.socketPath()));
  EXPECT_TRUE(exists(lock));
  std::filesystem::remove(lock);
  EXPECT_EQ(startAt(service.socketPath()), anotherInstance(service.socketPath()));
  EXPECT_EQ(service.hidutil({"list"}).status, 0);
}

TEST_F(ServiceStart, WhatAKilledInstanceLeftBehindIsReplaced) {
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

TEST_F(ServiceStart, AFileThatIsNoSocketIsLeftAlone) {
  std::ofstream(path) << "precious";
  EXPECT_EQ(
      startAt(path),
      serviceFailure(path + " exists and is not a socket; move it away or choose another place "
                            "with --socket"));
  std::string content;
  std::ifstream(path) >> content;
  EXPECT_EQ(content, "precious");
  EXPECT_FALSE(exists(path + ".lock"));
}

TEST_F(ServiceStart, TheLastLevelOfTheDirectoryIsMadeAndRemoved) {
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

TEST_F(ServiceStart, ADirectoryThatSomethingElseHasMovedIntoStays) {
  test::TestProcess service({serviceProgram, "--socket", directory.file("made/s")});
  service.waitForErrors("ready");
  std::ofstream(directory.file("made/other")) << "x";
  service.send(SIGTERM);
  EXPECT_EQ(service.wait().status, 0);
  EXPECT_TRUE(exists(directory.file("made/other")));
}

TEST_F(ServiceStart, MoreThanTheLastLevelIsNotMade) {
  EXPECT_EQ(startAt(directory.file("a/b/s")),
            serviceFailure("cannot create the directory " + directory.file("a/b") +
                           " (No such file or directory); run zephlin-hidd as root, or choose "
                           "another place with --socket"));
}

TEST_F(ServiceStart, ASocketPathHasToFit) {
  const std::string longPath = directory.file(std::string(108, 's'));
  EXPECT_EQ(startAt(longPath),
            serviceFailure("the socket path \"" + longPath +
                           "\" is not usable; give one of 1 to 107 bytes with --socket"));
}

TEST_F(ServiceStart, PropertiesThatCannotBeReadAreNoReasonNotToStart) {
  const std::string state = directory.file("properties");
  std::ofstream(state) << "nonsense";
  test::TestProcess service({serviceProgram, "--socket", path, "--state", state});
  service.waitForErrors("ready");
  service.send(SIGTERM);
  const test::Outcome outcome = service.wait();
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(outcome.errors.starts_with("zephlin-hidd: ignoring " + state + ": it is not valid"))
      << outcome.errors;
}

FileDescriptor listenAt(const std::string& path) {
  FileDescriptor socket = bindTo(path);
  EXPECT_EQ(::listen(socket.get(), 5), 0);
  return socket;
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

TEST_F(ServiceStart, ASocketFromSystemdIsServedAndLeftInPlace) {
  const FileDescriptor listening = listenAt(path);
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

TEST_F(ServiceStart, AHandRunInstanceDoesNotTakeTheSocketOfSystemd) {
  const FileDescriptor listening = listenAt(path);
  EXPECT_EQ(startAt(path), anotherInstance(path));
  EXPECT_TRUE(exists(path));
}

TEST_F(ServiceStart, AnythingButOneListeningStreamSocketFromSystemdIsRefused) {
  const FileDescriptor first = listenAt(directory.file("first"));
  const FileDescriptor second = listenAt(directory.file("second"));
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

TEST_F(ServiceStart, SystemdIsToldOfTheBeginningAndTheEnd) {
  const std::string notifyPath = directory.file("notify");
  const FileDescriptor notifications = bindTo(notifyPath, SOCK_DGRAM);
  RunningService service(0, [&] { ::setenv("NOTIFY_SOCKET", notifyPath.c_str(), 1); });
  service.stop();
  char text[64] = {};
  EXPECT_GT(::recv(notifications.get(), text, sizeof text - 1, MSG_DONTWAIT), 0);
  EXPECT_STREQ(text, "READY=1");
  EXPECT_GT(::recv(notifications.get(), text, sizeof text - 1, MSG_DONTWAIT), 0);
  EXPECT_EQ(std::string(text).find("STOPPING=1"), 0U);
}

}  // namespace
}  // namespace zephlin
