#include <QMessageBox>
#include <QPlainTextEdit>
#include <QTimer>
#include <string>

#include "Platform/Linux/Windows/KeyEquivalents.h"
#include "Platform/Linux/Windows/QtWindowServer.h"
#include "Platform/Simulated/SimulatedDesktop.h"
#include "Tests/Unit/Linux/Windows/TreeFixture.h"
#include "Zephlin/MainMenu.h"

namespace zephlin {
namespace {

constexpr Qt::KeyboardModifiers controlShift = Qt::ControlModifier | Qt::ShiftModifier;

/// The application's own main menu over a window with a text.
class MainMenuKeys : public testing::Test {
 protected:
  MainMenuKeys() {
    MainMenu::install(desktop_.application());
    install(desktop_.application().mainMenu());
    field_.setPlainText("text");
    field_.show();
  }
  void SetUp() override { ASSERT_TRUE(QTest::qWaitForWindowActive(&field_)); }

  void install(std::shared_ptr<Menu> menu) {
    keys_ = std::make_unique<KeyEquivalents>(std::move(menu), [this] { ++terminations_; });
  }
  void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::ControlModifier) {
    QTest::keyClick(field_.windowHandle(), key, modifiers);
  }
  std::string text() { return field_.toPlainText().toStdString(); }

  SimulatedDesktop desktop_;
  QPlainTextEdit field_;
  std::unique_ptr<KeyEquivalents> keys_;
  int terminations_ = 0;
};

TEST_F(MainMenuKeys, ControlQTerminates) {
  press(Qt::Key_Q);
  EXPECT_EQ(terminations_, 1);
}

TEST_F(MainMenuKeys, OtherModifiersDoNot) {
  press(Qt::Key_Q, Qt::NoModifier);
  press(Qt::Key_Q, controlShift);
  press(Qt::Key_Q, Qt::ControlModifier | Qt::AltModifier);
  press(Qt::Key_W);
  EXPECT_EQ(terminations_, 0);
  EXPECT_TRUE(field_.isVisible());
}

TEST_F(MainMenuKeys, ControlHHidesTheWindows) {
  QWidget other;
  other.show();
  press(Qt::Key_H);
  EXPECT_FALSE(field_.isVisible());
  EXPECT_FALSE(other.isVisible());
}

/// The user could not bring it back.
TEST_F(MainMenuKeys, ControlHDoesNotHideTheTraysIcon) {
  QWidget icon(nullptr, Qt::FramelessWindowHint | Qt::BypassWindowManagerHint);
  icon.show();
  press(Qt::Key_H);
  EXPECT_FALSE(field_.isVisible());
  EXPECT_TRUE(icon.isVisible());
}

TEST_F(MainMenuKeys, EditingKeysGoToTheFocus) {
  press(Qt::Key_A);
  EXPECT_EQ(field_.textCursor().selectedText(), "text");
  press(Qt::Key_X);
  EXPECT_EQ(text(), "");
  press(Qt::Key_V);
  press(Qt::Key_V);
  EXPECT_EQ(text(), "texttext");
  press(Qt::Key_Z);
  EXPECT_EQ(text(), "text");
  press(Qt::Key_Z, controlShift);
  EXPECT_EQ(text(), "texttext");
}

TEST_F(MainMenuKeys, AnActionIsPerformedOnce) {
  press(Qt::Key_A);
  press(Qt::Key_C);
  press(Qt::Key_V);
  EXPECT_EQ(text(), "text");
  press(Qt::Key_V);
  EXPECT_EQ(text(), "texttext");
}

/// Keys that no widget of Qt's knows by itself.
TEST_F(MainMenuKeys, AreTakenFromTheMenu) {
  int calls = 0;
  auto menu = std::make_shared<Menu>();
  auto submenu = std::make_shared<Menu>();
  menu->add(std::make_shared<MenuItem>("", std::monostate()))->submenu = submenu;
  submenu->add(std::make_shared<MenuItem>("", ResponderAction::SelectAll, "j"));
  submenu->add(std::make_shared<MenuItem>("", ResponderAction::Cut, "j"))
      ->keyEquivalentModifierMask = modifierShift | modifierCommand;
  submenu->add(std::make_shared<MenuItem>("", std::function<void()>([&calls] { ++calls; }), "l"));
  install(menu);
  press(Qt::Key_J);
  EXPECT_EQ(field_.textCursor().selectedText(), "text");
  press(Qt::Key_J, controlShift);
  EXPECT_EQ(text(), "");
  press(Qt::Key_L);
  EXPECT_EQ(calls, 1);
  press(Qt::Key_Q);
  EXPECT_EQ(terminations_, 0);
}

/// A widget inside one that can do it.
TEST_F(MainMenuKeys, AnActionTravelsOutwardsFromTheFocus) {
  auto menu = std::make_shared<Menu>();
  menu->add(std::make_shared<MenuItem>("", ResponderAction::SelectAll, "j"));
  install(menu);
  QPushButton inner("Inner", &field_);
  inner.show();
  inner.setFocus();
  ASSERT_EQ(QApplication::focusWidget(), &inner);
  press(Qt::Key_J);
  EXPECT_EQ(field_.textCursor().selectedText(), "text");
}

TEST_F(MainMenuKeys, WorkWhileAnAlertIsUp) {
  QtAlertPresenter presenter;
  bool found = false;
  QTimer::singleShot(0, [&] {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
      if (widget->objectName() == "alert") {
        found = QTest::qWaitForWindowActive(widget);
        QTest::keyClick(widget->windowHandle(), Qt::Key_Q, Qt::ControlModifier);
        QTest::keyClick(widget->windowHandle(), Qt::Key_H, Qt::ControlModifier);
      }
    }
  });
  presenter.runModal({.messageText = "?", .informativeText = "", .buttons = {"OK"}});
  EXPECT_TRUE(found);
  EXPECT_EQ(terminations_, 1);
  EXPECT_FALSE(field_.isVisible());
}

TEST_F(MainMenuKeys, EndWithTheirObject) {
  keys_.reset();
  press(Qt::Key_Q);
  EXPECT_EQ(terminations_, 0);
}

}  // namespace
}  // namespace zephlin
