#include <gtest/gtest.h>

#include "Platform/Simulated/SimulatedDesktop.h"
#include "Zephlin/LoginItem.h"

namespace zephlin {
namespace {

TEST(LoginItem, OutsideABundleNothingIsRegisteredAndBothAnswersAreNo) {
  SimulatedDesktop desktop;
  desktop.loginService().failWith("must not be asked");
  for (const char* path :
       {"/usr/bin", "/Zephlin.app/Contents", "/Zephlin.App", "/Zephlinapp", ""}) {
    desktop.processInfo().bundlePath = path;
    EXPECT_NO_THROW(LoginItem::setEnabled(desktop, true));
    EXPECT_NO_THROW(LoginItem::setEnabled(desktop, false));
    for (const auto status : {LoginServiceStatus::Enabled, LoginServiceStatus::RequiresApproval}) {
      desktop.loginService().setStatus(status);
      EXPECT_FALSE(LoginItem::isEnabled(desktop));
      EXPECT_FALSE(LoginItem::needsApproval(desktop));
    }
  }
  EXPECT_EQ(desktop.loginService().registrations(), 0U);
}

TEST(LoginItem, ARegistrationHeldForApprovalIsNotEnabled) {
  SimulatedDesktop desktop;
  desktop.loginService().setNeedsApproval(true);
  LoginItem::setEnabled(desktop, true);
  EXPECT_FALSE(LoginItem::isEnabled(desktop));
  EXPECT_TRUE(LoginItem::needsApproval(desktop));
}

TEST(LoginItem, TheStatusIsAskedAfreshAndTwoOfItsFourValuesCount) {
  SimulatedDesktop desktop;
  for (const auto status : {LoginServiceStatus::NotRegistered, LoginServiceStatus::Enabled,
                            LoginServiceStatus::RequiresApproval, LoginServiceStatus::NotFound}) {
    desktop.loginService().setStatus(status);
    EXPECT_EQ(LoginItem::isEnabled(desktop), status == LoginServiceStatus::Enabled);
    EXPECT_EQ(LoginItem::needsApproval(desktop), status == LoginServiceStatus::RequiresApproval);
  }
}

TEST(LoginItem, ThePlatformsErrorIsThrownUnchanged) {
  SimulatedDesktop desktop;
  desktop.loginService().failWith("no");
  try {
    LoginItem::setEnabled(desktop, true);
    FAIL() << "no error";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "no");
  }
}

}  // namespace
}  // namespace zephlin
