#include <gtest/gtest.h>

#include "KeyboardService/Service/Permissions.h"
#include "Tests/Unit/KeyboardService/Support/ErrorText.h"

namespace zephlin {
namespace {

constexpr uid_t serviceUser = 990;
constexpr uid_t seatedUser = 1000;
constexpr uid_t otherUser = 1001;

Permissions permissions() {
  return {serviceUser, [](uid_t user) { return user == seatedUser; }};
}

TEST(Permissions, RootAndTheServicesOwnUserMayChangeKeyboards) {
  EXPECT_TRUE(permissions().mayChangeKeyboards(0));
  EXPECT_TRUE(permissions().mayChangeKeyboards(serviceUser));
}

TEST(Permissions, WhoSitsAtTheMachineMayChangeKeyboards) {
  EXPECT_TRUE(permissions().mayChangeKeyboards(seatedUser));
}

TEST(Permissions, NobodyElseMay) {
  EXPECT_FALSE(permissions().mayChangeKeyboards(otherUser));
}

TEST(Permissions, ARefusalSaysWhoMayAndWhatToDo) {
  EXPECT_EQ(requestErrorOf([] { permissions().requireChangeBy(otherUser); }),
            "permission denied for user 1001; only root and users with an active local login "
            "session may change keyboards; log in at the machine itself, or run this as root");
  EXPECT_EQ(requestErrorOf([] { permissions().requireChangeBy(seatedUser); }), "no error");
}

}  // namespace
}  // namespace zephlin
