#include "Tests/Contract/ContractTest.h"
#include "Tests/Contract/Golden.h"
#include "Tests/Contract/WatchedDesktop.h"
#include "Zephlin/AppDelegate.h"
#include "Zephlin/TapTestController.h"

namespace zephlin::contract {
namespace {

/// The application's own window and menu, which look the same on every desktop.
class ApplicationLookTest : public ContractTest {
 protected:
  void showTapTest() {
    tapTest_->show();
    watched_.touchModifiers();
    EXPECT_TRUE(runUntil([&] { return !desktop().shownWindow(tapTestTitle).views.empty(); }));
  }

  void expectTapTest(const std::string& golden) {
    settle();
    expectGolden(golden, textOf(desktop().shownWindow(tapTestTitle)),
                 desktop().tellsDigitWidths() ? "" : " monospaced digits");
  }

  static std::string textOfEntry(const ShownMenuItem& item) {
    if (item.isSeparator) {
      return "-";
    }
    return item.title + (item.isEnabled ? "" : ", disabled") + (item.isChecked ? ", checked" : "") +
           (item.keyEquivalent.empty() ? "" : ", " + item.keyEquivalent);
  }

  std::string openedMenu() {
    EXPECT_TRUE(desktop().openMenu());
    std::string text = desktop().statusToolTip() + "\n";
    for (const ShownMenuItem& item : desktop().menuItems()) {
      text += textOfEntry(item) + "\n";
    }
    return text;
  }

  static constexpr const char* tapTestTitle = "Tap Test";

  WatchedDesktop watched_{platform()};
  std::shared_ptr<TapTestController> tapTest_ = std::make_shared<TapTestController>(watched_);
};

TEST_F(ApplicationLookTest, TheTapTestWaitsForTaps) {
  showTapTest();
  expectTapTest("TapTest");
}

TEST_F(ApplicationLookTest, TheTapTestIsTheSameInTheDark) {
  desktop().setDark(true);
  showTapTest();
  expectTapTest("TapTest");
}

TEST_F(ApplicationLookTest, TheTapTestFollowsTheAppearance) {
  showTapTest();
  desktop().setDark(true);
  expectTapTest("TapTest");
}

TEST_F(ApplicationLookTest, TheTapTestShowsATapThatRegistered) {
  showTapTest();
  watched_.pressCapsLock();
  watched_.toggleCapsLockAfter(0.012);
  expectTapTest("TapTestAfterATap");
}

TEST_F(ApplicationLookTest, TheTapTestShowsATapThatWentMissing) {
  showTapTest();
  watched_.pressCapsLock();
  expectTapTest("TapTestMissingATap");
}

TEST_F(ApplicationLookTest, TheTapTestAsksForThePermission) {
  watched_.inputIsAllowed = false;
  showTapTest();
  expectTapTest("TapTestWithoutPermission");
}

TEST_F(ApplicationLookTest, TheStatusMenuHasItsElevenEntries) {
  const auto delegate = std::make_shared<AppDelegate>(watched_);
  delegate->applicationDidFinishLaunching();
  EXPECT_TRUE(runUntil([&] { return delegate->cachedStatus().has_value(); }));
  settle();
  expectGolden("StatusMenu", openedMenu());
  delegate->setEnabled(false);
  EXPECT_TRUE(runUntil([&] { return delegate->cachedStatus()->instantServices == 0; }));
  desktop().closeMenu();
  settle();
  expectGolden("StatusMenuWhileOff", openedMenu());
}

}  // namespace
}  // namespace zephlin::contract
