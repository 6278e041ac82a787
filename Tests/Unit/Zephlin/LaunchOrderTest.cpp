#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "Platform/Simulated/SimulatedDesktop.h"
#include "Tests/Support/DelegatingPlatform.h"
#include "Zephlin/AppDelegate.h"
#include "Zephlin/StartApplication.h"

namespace zephlin {
namespace {

/// Each is noted once, when it comes first.
class Steps {
 public:
  void note(const std::string& step) {
    if (std::find(noted_.begin(), noted_.end(), step) == noted_.end()) {
      noted_.push_back(step);
    }
  }
  [[nodiscard]] const std::vector<std::string>& noted() const { return noted_; }

 private:
  std::vector<std::string> noted_;
};

/// Notes what is posted.
class NotedQueue final : public SerialQueue {
 public:
  NotedQueue(std::unique_ptr<SerialQueue> queue, Steps& steps)
      : queue_(std::move(queue)), steps_(steps) {}

  void post(std::function<void()> work) override {
    steps_.note("engine call");
    queue_->post(std::move(work));
  }

 private:
  std::unique_ptr<SerialQueue> queue_;
  Steps& steps_;
};

class NotedDispatch final : public Dispatch {
 public:
  NotedDispatch(Dispatch& dispatch, Steps& steps) : dispatch_(dispatch), steps_(steps) {}

  std::shared_ptr<MainQueue> mainQueue() override { return dispatch_.mainQueue(); }
  std::unique_ptr<SerialQueue> makeSerialQueue(const std::string& label) override {
    return std::make_unique<NotedQueue>(dispatch_.makeSerialQueue(label), steps_);
  }
  std::unique_ptr<Timer> scheduleTimer(Seconds interval, Seconds tolerance,
                                       std::function<void()> tick) override {
    return dispatch_.scheduleTimer(interval, tolerance, std::move(tick));
  }

 private:
  Dispatch& dispatch_;
  Steps& steps_;
};

class NotedApplication final : public Application {
 public:
  explicit NotedApplication(Steps& steps) : steps_(steps) {}

  void setDelegate(std::weak_ptr<ApplicationDelegate> delegate) override {
    steps_.note(delegate.expired() ? "no delegate" : "delegate");
  }
  void becomeAccessory() override { steps_.note("policy"); }
  void setMainMenu(std::shared_ptr<Menu>) override { steps_.note("main menu"); }
  bool handOverToRunningInstance() override { return false; }
  void activateIgnoringOtherApps() override {}
  void run() override { steps_.note("run"); }
  void terminate() override {}

 private:
  Steps& steps_;
};

/// Notes which parts of the desktop the application asks for while it launches.
class NotedDesktop final : public test::DelegatingPlatform<SimulatedDesktop> {
 public:
  Dispatch& dispatch() override { return dispatch_; }
  Application& application() override { return application_; }
  StatusBar& systemStatusBar() override {
    steps.note("status item");
    return desktop_.systemStatusBar();
  }
  HidDevices& hidDevices() override {
    steps.note("watcher");
    return desktop_.hidDevices();
  }
  WindowServer& windows() override {
    steps.note("window");
    return desktop_.windows();
  }
  LoginService& loginService() override {
    steps.note("login item");
    return desktop_.loginService();
  }
  SimulatedDesktop& desktop() { return desktop_; }

  Steps steps;

 private:
  NotedDispatch dispatch_{desktop_.dispatch(), steps};
  NotedApplication application_{steps};
};

class LaunchOrder : public testing::Test {
 protected:
  std::vector<std::string> launch() {
    const auto delegate = std::make_shared<AppDelegate>(platform_);
    delegate->applicationDidFinishLaunching();
    return platform_.steps.noted();
  }

  NotedDesktop platform_;
};

const std::vector<std::string> usualSteps = {"status item", "watcher", "engine call", "login item"};

TEST_F(LaunchOrder, TheStatusItemComesFirstThenTheWatcherThenTheApplyThenTheLoginItem) {
  EXPECT_EQ(launch(), usualSteps);
}

TEST_F(LaunchOrder, WithThePreferenceOffTheStatusIsReadWhereItWouldBeApplied) {
  platform_.standardUserDefaults().setBoolean("instantCapsLockEnabled", false);
  EXPECT_EQ(launch(), usualSteps);
}

TEST_F(LaunchOrder, APreviewIsShownBeforeTheLoginItemIsRegisteredAllTheSame) {
  platform_.desktop().processInfo().environment["ZEPHLIN_PREVIEW"] = "taptest";
  EXPECT_EQ(launch(), (std::vector<std::string>{"status item", "watcher", "engine call", "window",
                                                "login item"}));
  EXPECT_EQ(platform_.desktop().loginService().registrations(), 1U);
}

TEST_F(LaunchOrder, TheDelegateIsSetBeforeThePolicyAndTheMainMenu) {
  runApplication(platform_);
  EXPECT_EQ(platform_.steps.noted(),
            (std::vector<std::string>{"delegate", "policy", "main menu", "run"}));
}

}  // namespace
}  // namespace zephlin
