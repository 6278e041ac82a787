// `zephlin-hidd --check` on a machine without keyboards; Tests/VM has those with keyboards.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "Tests/CLI/KeyboardService/RunningService.h"
#include "Tests/Support/PrivateMachine.h"

namespace zephlin {
namespace {

/// `prepare` may add to the machine's /run, which is empty.
test::Outcome check(
    const std::vector<std::string>& options, const test::TestProcess::Body& prepare = [] {}) {
  std::vector<std::string> command{serviceProgram, "--check"};
  command.insert(command.end(), options.begin(), options.end());
  return test::TestProcess(command,
                           [&] {
                             ::unsetenv("SSH_CONNECTION");
                             test::enterPrivateMachine();
                             test::hideDevices();
                             prepare();
                           })
      .wait();
}

/// The text of one line of the report.
std::string lineOf(const test::Outcome& outcome, const std::string& name) {
  const std::size_t start = outcome.output.find('\n' + name + ": ");
  if (start == std::string::npos) {
    return "no line " + name + " in " + outcome.output;
  }
  const std::size_t text = outcome.output.find_first_not_of(' ', start + name.size() + 2);
  return outcome.output.substr(text, outcome.output.find('\n', text) - text);
}

TEST(Check, ReportsTheMachineWithoutAService) {
  const test::Outcome outcome = check({});
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(outcome.output.find("Zephlin:    " ZEPHLIN_VERSION "\n"), 0U) << outcome.output;
  EXPECT_NE(lineOf(outcome, "System").find("Linux"), std::string::npos);
  EXPECT_EQ(lineOf(outcome, "Container"), container().value_or("no"));
  EXPECT_EQ(lineOf(outcome, "Session"), "unknown to systemd-logind");
  EXPECT_EQ(lineOf(outcome, "Service"),
            absenceText("/run/zephlin/hidd.sock", "No such file or directory"));
  EXPECT_NE(lineOf(outcome, "uinput").find("/dev/uinput"), std::string::npos);
}

TEST(Check, AsksAServiceAndChangesNothingInIt) {
  const RunningService service(1);
  const std::string before = service.hidutil({"list"}).output;
  EXPECT_EQ(lineOf(check({"--socket", service.socketPath()}), "Service"),
            "answers at " + service.socketPath() + " with 1 keyboard");
  EXPECT_EQ(service.hidutil({"list"}).output, before);
}

TEST(Check, SaysIfTheServiceIsSomethingElse) {
  const test::Outcome outcome = check({"--socket", "/dev/null"});
  EXPECT_EQ(lineOf(outcome, "Service"), absenceText("/dev/null", "Connection refused"));
}

TEST(Check, NamesAContainerAndALoginOverSsh) {
  const test::Outcome outcome = check({}, [] {
    std::filesystem::create_directories("/run/systemd");
    std::ofstream("/run/systemd/container") << "lxc\n";
    ::setenv("SSH_CONNECTION", "192.0.2.1 50000 192.0.2.2 22", 1);
  });
  EXPECT_EQ(lineOf(outcome, "Container"), "lxc");
  EXPECT_EQ(lineOf(outcome, "Session"), "over SSH");
  EXPECT_NE(lineOf(outcome, "Service").find("this is a container (lxc)"), std::string::npos);
}

TEST(Check, WithoutKeyboardsFailsAndSaysWhy) {
  const test::Outcome outcome = check({});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.output.find(
                "\n\nThere are no keyboards: " +
                containerAdvice().value_or("no device has Caps Lock and all letters") + ".\n"),
            std::string::npos)
      << outcome.output;
}

TEST(Check, RefusesTheServicesOptions) {
  EXPECT_EQ(check({"--virtual-keyboards", "2"}),
            (test::Outcome{64, "",
                           "zephlin-hidd: --check takes no option except --socket; see "
                           "zephlin-hidd --help\n"}));
}

}  // namespace
}  // namespace zephlin
