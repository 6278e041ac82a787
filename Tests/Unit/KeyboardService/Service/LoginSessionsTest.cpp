#include <gtest/gtest.h>

#include <cstdio>

#include "KeyboardService/Service/Permissions.h"
#include "Tests/Support/PrivateMachine.h"
#include "Tests/Support/TestProcess.h"

namespace zephlin {
namespace {

constexpr uid_t loginUser = 4242;

/// What hasActiveLocalLoginSession says of the user on a machine with these logins.
std::string answerWith(const std::vector<test::RecordedLogin>& logins) {
  test::TestProcess child([&] {
    test::enterPrivateMachine();
    test::recordLogins(logins);
    std::fputs(hasActiveLocalLoginSession(loginUser) ? "yes" : "no", stdout);
    std::fflush(stdout);
  });
  const test::Outcome outcome = child.wait();
  return outcome.status == 0 ? outcome.output : outcome.errors;
}

TEST(LoginSessions, AnActiveLocalSessionCounts) {
  EXPECT_EQ(answerWith({{loginUser, true, false}}), "yes");
}

TEST(LoginSessions, ARemoteSessionDoesNotCount) {
  EXPECT_EQ(answerWith({{loginUser, true, true}}), "no");
}

TEST(LoginSessions, ASessionWithoutASeatDoesNotCount) {
  EXPECT_EQ(answerWith({{loginUser, true, false, false}}), "no");
}

TEST(LoginSessions, AnInactiveSessionDoesNotCount) {
  EXPECT_EQ(answerWith({{loginUser, false, false}}), "no");
}

TEST(LoginSessions, OneThatCountsAmongSeveralIsEnough) {
  EXPECT_EQ(
      answerWith({{loginUser, true, true}, {loginUser, false, false}, {loginUser, true, false}}),
      "yes");
}

TEST(LoginSessions, BeingActiveRemotelyAndLocalElsewhereDoesNotAddUp) {
  EXPECT_EQ(answerWith({{loginUser, true, true}, {loginUser, false, false}}), "no");
}

TEST(LoginSessions, AnotherUsersSessionDoesNotCount) {
  EXPECT_EQ(answerWith({{loginUser + 1, true, false}}), "no");
}

TEST(LoginSessions, WithoutAnyRecordThereIsNone) {
  EXPECT_EQ(answerWith({}), "no");
}

}  // namespace
}  // namespace zephlin
