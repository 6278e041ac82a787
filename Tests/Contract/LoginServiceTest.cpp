#include <exception>

#include "Tests/Contract/ContractTest.h"

namespace zephlin::contract {
namespace {

class LoginServiceTest : public ContractTest {
 protected:
  LoginService& service() { return platform().loginService(); }

  /// What a change says when it fails; empty where it does not.
  static std::string failureOf(const std::function<void()>& change) {
    try {
      change();
    } catch (const std::exception& error) {
      return error.what();
    }
    return "";
  }
};

TEST_F(LoginServiceTest, RegisteringEnablesAndUnregisteringEndsIt) {
  EXPECT_EQ(service().status(), LoginServiceStatus::NotRegistered);
  service().registerMainApp();
  EXPECT_EQ(service().status(), LoginServiceStatus::Enabled);
  service().registerMainApp();
  EXPECT_EQ(service().status(), LoginServiceStatus::Enabled);
  service().unregisterMainApp();
  EXPECT_EQ(service().status(), LoginServiceStatus::NotRegistered);
}

TEST_F(LoginServiceTest, WhatTheUserHasSwitchedOffAwaitsHisApproval) {
  service().registerMainApp();
  desktop().switchLoginItemOff();
  EXPECT_EQ(service().status(), LoginServiceStatus::RequiresApproval);
  service().registerMainApp();
  EXPECT_EQ(service().status(), LoginServiceStatus::RequiresApproval);
  service().unregisterMainApp();
  EXPECT_EQ(service().status(), LoginServiceStatus::NotRegistered);
}

TEST_F(LoginServiceTest, AFailureIsDescribedAndChangesNothing) {
  desktop().makeLoginItemsFail();
  EXPECT_NE(failureOf([&] { service().registerMainApp(); }), "");
  EXPECT_EQ(service().status(), LoginServiceStatus::NotRegistered);
}

}  // namespace
}  // namespace zephlin::contract
