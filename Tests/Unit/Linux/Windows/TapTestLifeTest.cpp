#include <QAbstractButton>

#include "Tests/Unit/Linux/Windows/TapTestOnQt.h"

namespace zephlin {
namespace {

using TapTestLife = TapTestOnQt;

TEST_F(TapTestLife, ShowsWhatIsCounted) {
  show();
  tap(2);
  tap(1, false);
  EXPECT_EQ(static_cast<QLabel&>(cardLabel(0, 0)).text(), "3");
  EXPECT_EQ(static_cast<QLabel&>(cardLabel(1, 0)).text(), "2");
  EXPECT_EQ(verdict().text(), "1 tap went missing. The delay is on");
}

TEST_F(TapTestLife, TabAndSpaceReset) {
  show();
  tap(2);
  QTest::keyClick(widget().windowHandle(), Qt::Key_Tab);
  ASSERT_NE(QApplication::focusWidget(), nullptr);
  EXPECT_EQ(QApplication::focusWidget(), &row(6));
  QTest::keyClick(widget().windowHandle(), Qt::Key_Space);
  EXPECT_EQ(controller_->pressCount(), 0);
  EXPECT_EQ(static_cast<QLabel&>(cardLabel(0, 0)).text(), "0");
}

TEST_F(TapTestLife, NothingHasTheFocusAtFirstSoThatSpaceDoesNothing) {
  show();
  tap(2);
  QTest::keyClick(widget().windowHandle(), Qt::Key_Space);
  EXPECT_EQ(controller_->pressCount(), 2);
}

TEST_F(TapTestLife, EscHidesTheWindowAndStopsWatching) {
  show();
  QTest::keyClick(widget().windowHandle(), Qt::Key_Escape);
  EXPECT_FALSE(widget().isVisible());
  EXPECT_EQ(desktop().hidDevices().openInputs(), 0U);
  EXPECT_EQ(desktop().eventTaps().openTaps(), 0U);
}

TEST_F(TapTestLife, ManyOpeningsLeaveNoWidgetsBehind) {
  show();
  const auto objects = [this] { return widget().findChildren<QObject*>().size(); };
  const auto before = objects();
  const auto windowsBefore = QApplication::allWidgets().size();
  for (int time = 0; time < 200; ++time) {
    QTest::keyClick(widget().windowHandle(), Qt::Key_Escape);
    ASSERT_FALSE(widget().isVisible());
    controller_->show();
    tap(1);
    settle();
    ASSERT_TRUE(widget().isVisible());
  }
  EXPECT_EQ(objects(), before);
  EXPECT_EQ(QApplication::allWidgets().size(), windowsBefore);
}

TEST_F(TapTestLife, ManyControllersLeaveNoWidgetsBehind) {
  const auto before = QApplication::allWidgets().size();
  for (int time = 0; time < 50; ++time) {
    controller_->show();
    settle();
    ASSERT_GT(QApplication::allWidgets().size(), before);
    controller_ = std::make_shared<TapTestController>(platform_);
  }
  EXPECT_EQ(QApplication::allWidgets().size(), before);
}

}  // namespace
}  // namespace zephlin
