#include <QPushButton>

#include "Tests/Unit/Linux/Windows/TapTestOnQt.h"

namespace zephlin {
namespace {

class TapTestByKeyboard : public TapTestOnQt {
 protected:
  void SetUp() override {
    show();
    tap(1);
  }
  void press(Qt::Key key) { QTest::keyClick(widget().windowHandle(), key); }
  QPushButton& reset() { return static_cast<QPushButton&>(row(6)); }
  [[nodiscard]] bool isReset() const { return controller_->pressCount() == 0; }
};

TEST_F(TapTestByKeyboard, NoKeyResetsBeforeTheButtonHasTheFocus) {
  for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter, Qt::Key_CapsLock}) {
    press(key);
    EXPECT_FALSE(isReset()) << key;
  }
}

TEST_F(TapTestByKeyboard, ReturnAndSpacePressTheButtonThatTabHasReached) {
  for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
    press(Qt::Key_Tab);
    EXPECT_TRUE(reset().hasFocus());
    press(Qt::Key_CapsLock);
    EXPECT_FALSE(isReset());
    press(key);
    EXPECT_TRUE(isReset()) << key;
    tap(1);
  }
}

TEST_F(TapTestByKeyboard, AClickLeavesTheFocusSoThatLaterKeysPressNothing) {
  QTest::mouseClick(&reset(), Qt::LeftButton);
  EXPECT_TRUE(isReset());
  EXPECT_FALSE(reset().hasFocus());
  tap(1);
  press(Qt::Key_Space);
  EXPECT_FALSE(isReset());
}

TEST_F(TapTestByKeyboard, TheFocusIsVisible) {
  const QImage before = reset().grab().toImage();
  press(Qt::Key_Tab);
  EXPECT_NE(reset().grab().toImage(), before);
}

TEST_F(TapTestByKeyboard, AWindowThatIsOpenedAgainStartsWithoutFocusOnTheButton) {
  press(Qt::Key_Tab);
  press(Qt::Key_Escape);
  EXPECT_FALSE(widget().isVisible());
  show();
  tap(1);
  press(Qt::Key_Return);
  EXPECT_FALSE(isReset());
}

}  // namespace
}  // namespace zephlin
