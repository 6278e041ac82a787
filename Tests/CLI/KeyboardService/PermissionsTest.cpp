#include <gtest/gtest.h>
#include <unistd.h>

#include <stdexcept>

#include "Tests/CLI/KeyboardService/RunningService.h"
#include "Tests/Support/PrivateMachine.h"

namespace zephlin {
namespace {

/// Who asks. Root can become another user; an ordinary user cannot, and is then the user that
/// the service runs as.
uid_t asker() {
  return ::geteuid() == 0 ? 4242 : ::geteuid();
}

bool askerOwnsTheService() {
  return asker() == ::geteuid();
}

void becomeAsker() {
  if (!askerOwnsTheService() && ::setresuid(asker(), asker(), asker()) != 0) {
    throw std::runtime_error("cannot become another user");
  }
}

/// A service on a machine with these logins, and a hidutil that the asker runs.
class Machine {
 public:
  explicit Machine(const std::vector<test::RecordedLogin>& logins)
      : service_(1, [logins] {
          test::enterPrivateMachine();
          test::recordLogins(logins);
        }) {}

  [[nodiscard]] test::Outcome hidutil(const std::vector<std::string>& arguments) const {
    return test::TestProcess(service_.command(arguments), becomeAsker).wait();
  }

 private:
  RunningService service_;
};

const std::vector<std::string> setCommand{"property", "--set", R"({"A":1})"};

const test::Outcome isSet{0, "RegistryID   Key   Value\n100000001    A     1\n", ""};

test::Outcome refusal() {
  return failure("permission denied for user " + std::to_string(asker()) +
                 "; only root and users with an active local login session may change keyboards; "
                 "log in at the machine itself, or run this as root");
}

/// What an asker without a login session gets.
test::Outcome refusalOfStrangers() {
  return askerOwnsTheService() ? isSet : refusal();
}

TEST(ServicePermissions, AUserWithAnActiveLocalLoginMayChangeKeyboards) {
  const Machine machine({{asker(), true, false}});
  EXPECT_EQ(machine.hidutil(setCommand), isSet);
  EXPECT_EQ(machine.hidutil({"plug"}), (test::Outcome{0, "100000002\n", ""}));
  EXPECT_EQ(machine.hidutil({"pull", "100000002"}), test::Outcome{});
}

TEST(ServicePermissions, OtherwiseChangesAreRefusedAndNothingIsChanged) {
  for (const std::vector<test::RecordedLogin>& logins :
       {std::vector<test::RecordedLogin>{{asker(), true, true}}, {{asker(), false, false}}, {}}) {
    const Machine machine(logins);
    EXPECT_EQ(machine.hidutil(setCommand), refusalOfStrangers());
    EXPECT_EQ(machine.hidutil({"property", "--get", "A"}).output,
              "RegistryID   Key   Value\n100000001    A     " +
                  std::string(askerOwnsTheService() ? "1" : "(null)") + "\n");
  }
}

TEST(ServicePermissions, WhoeverIsLoggedInOverSshLearnsOfSudo) {
  const Machine machine({{asker(), true, true, "", "sshd"}});
  EXPECT_EQ(machine.hidutil(setCommand),
            askerOwnsTheService()
                ? isSet
                : failure("permission denied for user " + std::to_string(asker()) +
                          "; you are logged in over SSH: use sudo"));
}

TEST(ServicePermissions, PlugAndPullAreRefusedToo) {
  const Machine machine({});
  EXPECT_EQ(machine.hidutil({"plug"}),
            askerOwnsTheService() ? (test::Outcome{0, "100000002\n", ""}) : refusal());
  EXPECT_EQ(machine.hidutil({"pull", "100000001"}),
            askerOwnsTheService() ? test::Outcome{} : refusal());
}

TEST(ServicePermissions, EveryoneMayListAndGet) {
  const Machine machine({});
  EXPECT_EQ(machine.hidutil({"list"}).status, 0);
  EXPECT_EQ(machine.hidutil({"property", "--get", "A"}).status, 0);
}

}  // namespace
}  // namespace zephlin
