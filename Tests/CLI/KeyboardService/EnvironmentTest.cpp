#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>

#include "Tests/CLI/KeyboardService/RunningService.h"

namespace zephlin {
namespace {

void closeStandardDescriptors() {
  for (int each = STDIN_FILENO; each <= STDERR_FILENO; ++each) {
    ::close(each);
  }
}

TEST(Environment, HidutilWorksWithoutStandardDescriptors) {
  const RunningService service;
  test::TestProcess child(service.command({"property", "--set", R"({"A":3})"}),
                          closeStandardDescriptors);
  EXPECT_EQ(child.wait(), test::Outcome{});
  EXPECT_EQ(service.hidutil({"property", "--matching", R"({"ProductID":1})", "--get", "A"}).output,
            "RegistryID   Key   Value\n"
            "100000001    A     3\n");
}

TEST(Environment, TheServiceWorksWithoutStandardDescriptors) {
  const test::TemporaryDirectory directory;
  const std::string socket = directory.file("s");
  test::TestProcess service({serviceProgram, "--socket", socket, "--virtual-keyboards", "1"},
                            closeStandardDescriptors);
  test::Outcome list;
  do {
    list =
        test::run({hidutilProgram, "--socket", socket, "list", "--matching", R"({"ProductID":2})"});
  } while (list.status != 0);
  EXPECT_EQ(
      list.output,
      "RegistryID   VendorID   ProductID   UsagePage   Usage   Transport   State   Product\n");
  service.send(SIGTERM);
  EXPECT_EQ(service.wait(), test::Outcome{});
}

void writeToFullDevice() {
  ::dup2(::open("/dev/full", O_WRONLY | O_CLOEXEC), STDOUT_FILENO);
}

TEST(Environment, AListingThatCannotBeWrittenIsAnError) {
  const RunningService service;
  test::TestProcess child(service.command({"list"}), writeToFullDevice);
  EXPECT_EQ(child.wait(), failure("cannot write to standard output (No space left on device); "
                                  "check where it goes (any change asked for has been made)"));
}

TEST(Environment, AHelpThatCannotBeWrittenIsAnErrorOfTheServiceToo) {
  test::TestProcess child({serviceProgram, "--help"}, writeToFullDevice);
  EXPECT_EQ(child.wait(),
            (test::Outcome{1, "",
                           "zephlin-hidd: cannot write to standard output (No space left on "
                           "device); check where it goes\n"}));
}

TEST(Environment, AReaderThatIsGoneIsAnError) {
  const RunningService service;
  test::TestProcess child(service.command({"list"}), [] {
    int ends[2];
    if (::pipe(ends) != 0) {
      throw std::runtime_error("pipe");
    }
    ::close(ends[0]);
    ::dup2(ends[1], STDOUT_FILENO);
    ::close(ends[1]);
  });
  EXPECT_EQ(child.wait(), failure("cannot write to standard output (Broken pipe); check where it "
                                  "goes (any change asked for has been made)"));
}

TEST(Environment, EveryoneMayConnectWhateverTheFileCreationMask) {
  const RunningService service(0, [] { ::umask(0777); });
  struct stat found {};
  ASSERT_EQ(::stat(service.socketPath().c_str(), &found), 0);
  EXPECT_EQ(found.st_mode & 0777U, 0666U);
}

}  // namespace
}  // namespace zephlin
