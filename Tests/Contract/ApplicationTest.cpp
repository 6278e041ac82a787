#include "Tests/Contract/ContractTest.h"

namespace zephlin::contract {
namespace {

class RecordingDelegate final : public ApplicationDelegate {
 public:
  void applicationDidFinishLaunching() override {
    ++launches;
    if (onLaunch) {
      onLaunch();
    }
  }
  void applicationShouldHandleReopen() override {}
  void applicationShouldSwitch(bool /*isOn*/) override {}
  void applicationShouldReportStatus(
      std::function<void(const std::string& status)> /*report*/) override {}

  int launches = 0;
  std::function<void()> onLaunch;
};

class ApplicationTest : public ContractTest {
 protected:
  Application& application() { return platform().application(); }

  std::shared_ptr<RecordingDelegate> delegate_ = std::make_shared<RecordingDelegate>();
};

TEST_F(ApplicationTest, TheDelegateIsToldOnceWhenTheLoopHasBegun) {
  application().becomeAccessory();
  application().setDelegate(delegate_);
  int launchesAtTheEnd = 0;
  delegate_->onLaunch = [&] {
    mainQueue()->postAfter(Seconds{0.05}, [&] {
      launchesAtTheEnd = delegate_->launches;
      application().terminate();
    });
  };
  EXPECT_EQ(delegate_->launches, 0);
  application().run();
  EXPECT_EQ(launchesAtTheEnd, 1);
}

TEST_F(ApplicationTest, TerminatingLeavesTheLoop) {
  application().setDelegate(delegate_);
  delegate_->onLaunch = [&] { application().terminate(); };
  bool tickedAfterwards = false;
  const auto timer =
      dispatch().scheduleTimer(Seconds{10}, Seconds{}, [&] { tickedAfterwards = true; });
  application().run();
  EXPECT_EQ(delegate_->launches, 1);
  EXPECT_FALSE(tickedAfterwards);
}

TEST_F(ApplicationTest, ADelegateThatIsGoneIsNotCalled) {
  application().setDelegate(delegate_);
  delegate_.reset();
  mainQueue()->postAfter(Seconds{0.02}, [&] { application().terminate(); });
  application().run();
}

TEST_F(ApplicationTest, TheOnlyStartHasNobodyToHandOverTo) {
  EXPECT_FALSE(application().handOverToRunningInstance());
}

}  // namespace
}  // namespace zephlin::contract
