#include "Tests/Desktop/Harness/DesktopTest.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "Tests/Desktop/Harness/Xfce.h"

namespace zephlin::test {
namespace {

MakeShell& shellOfSessions() {
  static MakeShell makeShell = makeXfce;
  return makeShell;
}

std::unique_ptr<Desktop>& sharedDesktop() {
  static std::unique_ptr<Desktop> desktop;
  return desktop;
}

}  // namespace

void DesktopTest::setShell(MakeShell makeShell) {
  shellOfSessions() = std::move(makeShell);
}

Desktop& DesktopTest::desktop() {
  if (!sharedDesktop()) {
    sharedDesktop() = std::make_unique<Desktop>(shellOfSessions());
  }
  return *sharedDesktop();
}

std::string DesktopTest::titleOfActiveWindow() {
  const std::vector<ShownWindow> windows = desktop().shell().windows();
  const auto active = std::find_if(windows.begin(), windows.end(),
                                   [](const ShownWindow& window) { return window.isActive; });
  return active == windows.end() ? "" : active->title;
}

void DesktopTest::waitForActiveWindow(const std::string& title) {
  waitUntil([&] { return title + " to be the active window instead of " + titleOfActiveWindow(); },
            [&] { return titleOfActiveWindow() == title; });
}

void DesktopTest::TearDownTestSuite() {
  sharedDesktop().reset();
}

DesktopTest::DesktopTest() {
  beforeWaitingFails([] {
    const auto* const test = testing::UnitTest::GetInstance()->current_test_info();
    desktop().photographNow("failed-" + desktop().shell().name() + "-" + test->test_suite_name() +
                            "." + test->name());
  });
  desktop().panel();
  desktop().keyboards().setAll(-1);
}

void DesktopTest::TearDown() {
  desktop().hidutil().recover();
  desktop().hidutil().release();
  beforeWaitingFails({});
}

}  // namespace zephlin::test
