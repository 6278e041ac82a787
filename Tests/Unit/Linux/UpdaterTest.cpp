#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Platform/Linux/LinuxUpdater.h"

namespace zephlin {
namespace {

class RecordingAlerts final : public AlertPresenter {
 public:
  void runModal(const Alert& alert) override { shown.push_back(alert); }

  std::vector<Alert> shown;
};

TEST(LinuxUpdater, CheckingShowsTheVersionAndWhereNewerOnesComeFrom) {
  RecordingAlerts alerts;
  LinuxUpdater updater(alerts);
  EXPECT_TRUE(alerts.shown.empty());
  updater.checkForUpdates();
  ASSERT_EQ(alerts.shown.size(), 1U);
  EXPECT_EQ(alerts.shown[0].messageText, "Zephlin " ZEPHLIN_VERSION);
  EXPECT_EQ(alerts.shown[0].informativeText, "Your package manager installs newer versions.");
  EXPECT_EQ(alerts.shown[0].buttons, std::vector<std::string>{"OK"});
}

}  // namespace
}  // namespace zephlin
