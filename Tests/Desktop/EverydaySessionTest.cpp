// The application among other windows, and a panel and a session that end, on every desktop.

#include <QPoint>
#include <string>

#include "Tests/Desktop/Harness/EverydayTest.h"

namespace zephlin::test {
namespace {

constexpr const char* tapTestTitle = "Tap Test";

class EverydaySession : public EverydayTest {
 protected:
  static Program startOtherProgram() {
    return {{OTHER_WINDOW_PROGRAM},
            desktop().environment(desktop().makeHome()),
            desktop().logFile("other-window")};
  }

  /// Whether the middle of the tap test is visible: other windows are magenta. Under X11 it always
  /// is, because the tap test stays on top there.
  [[nodiscard]] bool showsTapTest() const {
    for (const ShownWindow& window : windows()) {
      if (window.title == tapTestTitle) {
        return desktop().screen().picture().pixelColor(window.place.center()) != Qt::magenta;
      }
    }
    return false;
  }

  void openTapTest() {
    menu_.choose("Tap Test…");
    waitForActiveWindow(tapTestTitle);
  }

  void waitForTapTestInFront() const {
    waitForActiveWindow(tapTestTitle);
    waitUntil("the tap test in front", [this] { return showsTapTest(); });
  }

  /// As from a terminal.
  void startAgain() {
    App second(desktop(), {.home = app_.home()});
    EXPECT_EQ(second.program().waitForEnd(), 0);
  }
};

TEST_F(EverydaySession, TheTapTestComesToTheFrontFromTheMenu) {
  openTapTest();
  const Program other = startOtherProgram();
  waitForActiveWindow("Other");
  menu_.choose("Tap Test…");
  waitForTapTestInFront();
  photograph("tap-test-from-menu");
}

TEST_F(EverydaySession, TheTapTestComesToTheFrontWhenZephlinIsStartedAgain) {
  openTapTest();
  const Program other = startOtherProgram();
  waitForActiveWindow("Other");
  startAgain();
  waitForTapTestInFront();
  photograph("tap-test-from-second-start");
}

TEST_F(EverydaySession, TheSecondStartOpensTheTapTest) {
  app_.waitForStatusLine(onLine);
  startAgain();
  waitForTapTestInFront();
  closeWindow();
}

TEST_F(EverydaySession, TheIconIsBackWhenThePanelIsRestarted) {
  for (int restart = 0; restart < 2; ++restart) {
    desktop().stopPanel();
    desktop().panel().waitForIcon();
  }
  menu_.choose("Quit Zephlin");
  EXPECT_EQ(app_.program().waitForEnd(), 0);
}

/// One test, because nothing works in the session afterwards.
class EverydaySessionEnd : public EverydayTest {};

TEST_F(EverydaySessionEnd, EndsTheApplication) {
  menu_.choose("Tap Test…");
  waitForActiveWindow(tapTestTitle);
  desktop().endSession();
  EXPECT_EQ(app_.program().waitForEnd(), 0);
}

}  // namespace
}  // namespace zephlin::test
