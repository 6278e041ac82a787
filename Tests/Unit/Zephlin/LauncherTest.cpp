// What the desktop's launcher asks of the application.

#include "Tests/Unit/Zephlin/AppDelegateFixture.h"

namespace zephlin {
namespace {

class LauncherTest : public AppDelegateTest {
 protected:
  std::vector<std::string> statusReports() {
    std::vector<std::string> reports;
    delegate_->applicationShouldReportStatus(
        [&reports](const std::string& status) { reports.push_back(status); });
    desktop_.runFor(aMoment);
    return reports;
  }
};

TEST_F(LauncherTest, SwitchingIsWhatTheMenusToggleDoes) {
  launchAndSettle();
  delegate_->applicationShouldSwitch(false);
  EXPECT_FALSE(delegate_->isEnabled());
  desktop_.runFor(aMoment);
  EXPECT_EQ(restores(), 1U);
  delegate_->applicationShouldSwitch(true);
  EXPECT_TRUE(delegate_->isEnabled());
  desktop_.runFor(aMoment);
  EXPECT_EQ(applies(), 2U);
}

TEST_F(LauncherTest, SwitchingToWhatItIsAlreadyStaysThere) {
  launchAndSettle();
  delegate_->applicationShouldSwitch(true);
  EXPECT_TRUE(delegate_->isEnabled());
}

TEST_F(LauncherTest, TheStatusIsReportedOnceAsTheMenuShowsIt) {
  launchAndSettle();
  EXPECT_EQ(statusReports(), std::vector<std::string>{"On. Every tap registers instantly"});
  delegate_->applicationShouldSwitch(false);
  EXPECT_EQ(statusReports(), std::vector<std::string>{"Off, using your Mac's normal delay"});
}

TEST_F(LauncherTest, TheStatusIsReadAfresh) {
  launchAndSettle();
  desktop_.hidutil().failGets(HidutilFault::Exit{});
  EXPECT_EQ(statusReports(), std::vector<std::string>{"Checking…"});
}

TEST_F(LauncherTest, TheStatusOfASwitchIsTheOneAfterIt) {
  launchSwitchedOff();
  delegate_->applicationShouldSwitch(true);
  EXPECT_EQ(statusReports(), std::vector<std::string>{"On. Every tap registers instantly"});
}

TEST_F(LauncherTest, NothingIsReportedOnceTheApplicationIsGone) {
  launchAndSettle();
  bool isReported = false;
  delegate_->applicationShouldReportStatus(
      [&isReported](const std::string& /*status*/) { isReported = true; });
  delegate_.reset();
  desktop_.runFor(aMoment);
  EXPECT_FALSE(isReported);
}

}  // namespace
}  // namespace zephlin
