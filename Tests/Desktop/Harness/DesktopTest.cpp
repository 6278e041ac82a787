#include "Tests/Desktop/Harness/DesktopTest.h"

#include <memory>
#include <utility>

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
