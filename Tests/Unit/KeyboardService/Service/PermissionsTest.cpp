#include <gtest/gtest.h>

#include <cstdio>

#include "KeyboardService/Service/Permissions.h"
#include "Tests/Support/PrivateMachine.h"
#include "Tests/Support/TestProcess.h"
#include "Tests/Unit/KeyboardService/Support/ErrorText.h"

namespace zephlin {
namespace {

constexpr uid_t serviceUser = 990;
constexpr uid_t seatedUser = 1000;
constexpr uid_t otherUser = 1001;

TEST(Permissions, RootTheServicesUserAndUsersAtTheMachineMayChangeKeyboards) {
  const Permissions permissions(serviceUser, [](uid_t user) { return user == seatedUser; });
  for (const uid_t user : {uid_t{0}, serviceUser, seatedUser}) {
    EXPECT_TRUE(permissions.mayChangeKeyboards(user)) << user;
    EXPECT_NO_THROW(permissions.requireChangeBy(user)) << user;
  }
  EXPECT_FALSE(permissions.mayChangeKeyboards(otherUser));
  EXPECT_EQ(requestErrorOf([&] { permissions.requireChangeBy(otherUser); }),
            "permission denied for user 1001; only root and users with an active local login "
            "session may change keyboards; log in at the machine itself, or run this as root");
}

constexpr test::RecordedLogin local{seatedUser, true, false};
constexpr test::RecordedLogin remote{seatedUser, true, true};
constexpr test::RecordedLogin withoutSeat{seatedUser, true, false, false};
constexpr test::RecordedLogin inactive{seatedUser, false, false};
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
    std::fputs(hasActiveLocalLoginSession(seatedUser) ? "yes" : "no", stdout);
    std::fflush(stdout);
  });
  EXPECT_EQ(child.wait(), (test::Outcome{0, GetParam().answer, ""}));
}

INSTANTIATE_TEST_SUITE_P(
    , LoginSessions,
    testing::Values(Machine{"ActiveAndLocal", {local}, "yes"}, Machine{"Remote", {remote}, "no"},
                    Machine{"WithoutSeat", {withoutSeat}, "no"},
                    Machine{"Inactive", {inactive}, "no"},
                    Machine{"OneOfSeveral", {remote, inactive, local}, "yes"},
                    Machine{"ActiveRemotelyAndLocalElsewhere", {remote, inactive}, "no"},
                    Machine{"AnotherUsers", {anotherUsers}, "no"}, Machine{"NoRecord", {}, "no"}),
    [](const auto& instance) { return instance.param.name; });

}  // namespace
}  // namespace zephlin
