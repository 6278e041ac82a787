#include <gtest/gtest.h>

#include <cstdio>
#include <set>
#include <string>

#include "KeyboardService/Service/Permissions.h"
#include "Tests/Support/PrivateMachine.h"
#include "Tests/Support/TestProcess.h"
#include "Tests/Unit/KeyboardService/Support/ErrorText.h"

namespace zephlin {
namespace {

constexpr uid_t serviceUser = 990;
constexpr uid_t seatedUser = 1000;
constexpr uid_t otherUser = 1001;

Permissions permissionsWith(std::set<std::string> seats) {
  return Permissions(serviceUser,
                     [seats](uid_t user) { return user == seatedUser ? Logins{seats} : Logins{}; });
}

TEST(Permissions, RootAndTheServicesUserMayChangeAllKeyboards) {
  for (const uid_t user : {uid_t{0}, serviceUser}) {
    const auto keyboards = permissionsWith({}).requireChangeBy(user);
    for (const char* const seat : {"", "seat0", "seat1"}) {
      EXPECT_TRUE(keyboards.includes(seat)) << user << seat;
    }
  }
}

TEST(Permissions, OthersMayChangeThoseOfTheirSeatsAndThoseOfNone) {
  const auto keyboards = permissionsWith({"seat0", "seat2"}).requireChangeBy(seatedUser);
  for (const char* const seat : {"", "seat0", "seat2"}) {
    EXPECT_TRUE(keyboards.includes(seat)) << seat;
  }
  EXPECT_FALSE(keyboards.includes("seat1"));
}

TEST(Permissions, AUserWithoutASeatMayChangeNone) {
  EXPECT_EQ(requestErrorOf(
                [] { static_cast<void>(permissionsWith({"seat0"}).requireChangeBy(otherUser)); }),
            "permission denied for user 1001; only root and users with an active local login "
            "session may change keyboards; log in at the machine itself, or run this as root");
}

TEST(Permissions, AUserWithoutASeatWhoIsLoggedInOverSshLearnsOfSudo) {
  const Permissions permissions(serviceUser, [](uid_t) { return Logins{{}, true}; });
  EXPECT_EQ(requestErrorOf([&] { static_cast<void>(permissions.requireChangeBy(otherUser)); }),
            "permission denied for user 1001; you are logged in over SSH: use sudo");
}

TEST(Permissions, AUserWithASeatMayBeLoggedInOverSshToo) {
  const Permissions permissions(serviceUser, [](uid_t) { return Logins{{"seat0"}, true}; });
  EXPECT_TRUE(permissions.requireChangeBy(otherUser).includes("seat0"));
}

constexpr test::RecordedLogin local{seatedUser, true, false};
constexpr test::RecordedLogin remote{seatedUser, true, true};
constexpr test::RecordedLogin overSsh{seatedUser, true, true, "", "sshd"};
constexpr test::RecordedLogin overSshFromHere{seatedUser, true, false, "", "sshd"};
constexpr test::RecordedLogin withoutSeat{seatedUser, true, false, ""};
constexpr test::RecordedLogin inactive{seatedUser, false, false};
constexpr test::RecordedLogin elsewhere{seatedUser, true, false, "seat1"};
constexpr test::RecordedLogin anotherUsers{otherUser, true, false};

struct Machine {
  const char* name;
  std::vector<test::RecordedLogin> logins;
  const char* answer;
};

class LoginSessions : public testing::TestWithParam<Machine> {};

TEST_P(LoginSessions, CountIfActiveLocalAndWithASeat) {
  test::TestProcess child([&] {
    test::enterPrivateMachine();
    test::recordLogins(GetParam().logins);
    const Logins logins = loginsOf(seatedUser);
    for (const std::string& seat : logins.seats) {
      std::fputs((seat + ' ').c_str(), stdout);
    }
    std::fputs(logins.isOverSsh ? "SSH" : "", stdout);
    std::fflush(stdout);
  });
  EXPECT_EQ(child.wait(), (test::Outcome{0, GetParam().answer, ""}));
}

INSTANTIATE_TEST_SUITE_P(
    , LoginSessions,
    testing::Values(Machine{"ActiveAndLocal", {local}, "seat0 "}, Machine{"Remote", {remote}, ""},
                    Machine{"OverSsh", {overSsh}, "SSH"},
                    Machine{"OverSshFromTheMachineItself", {overSshFromHere}, "SSH"},
                    Machine{"LocalAndOverSsh", {overSsh, local}, "seat0 SSH"},
                    Machine{"WithoutSeat", {withoutSeat}, ""}, Machine{"Inactive", {inactive}, ""},
                    Machine{"AtAnotherSeat", {elsewhere}, "seat1 "},
                    Machine{"AtTwoSeats", {local, elsewhere, local}, "seat0 seat1 "},
                    Machine{"OneOfSeveral", {remote, inactive, local}, "seat0 "},
                    Machine{"ActiveRemotelyAndLocalElsewhere", {remote, inactive}, ""},
                    Machine{"AnotherUsers", {anotherUsers}, ""}, Machine{"NoRecord", {}, ""}),
    [](const auto& instance) { return instance.param.name; });

}  // namespace
}  // namespace zephlin
