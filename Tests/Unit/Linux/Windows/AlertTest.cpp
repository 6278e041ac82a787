#include <gtest/gtest.h>

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTextDocumentFragment>
#include <QTimer>
#include <functional>

#include "Platform/Linux/Windows/QtWindowServer.h"
#include "Platform/Simulated/SimulatedDesktop.h"
#include "Tests/Support/DelegatingPlatform.h"
#include "Zephlin/About.h"

namespace zephlin {
namespace {

class PlatformWithQtAlerts final : public test::DelegatingPlatform<SimulatedDesktop> {
 public:
  AlertPresenter& alerts() override { return alerts_; }

 private:
  QtAlertPresenter alerts_;
};

QList<QMessageBox*> findAlerts() {
  QList<QMessageBox*> found;
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    if (widget->objectName() == "alert") {
      found.append(static_cast<QMessageBox*>(widget));
    }
  }
  return found;
}

QMessageBox* findAlert() {
  return findAlerts().value(0);
}

class AlertTest : public testing::Test {
 protected:
  /// Runs the About alert, and `meanwhile` once it is active.
  void runAbout(const std::function<void(QMessageBox&)>& meanwhile) {
    wasShown_ = false;
    QTimer::singleShot(0, [&] {
      QMessageBox* const box = findAlert();
      ASSERT_NE(box, nullptr);
      ASSERT_TRUE(QTest::qWaitForWindowActive(box));
      wasShown_ = true;
      meanwhile(*box);
    });
    runAboutAlert(platform_);
    EXPECT_TRUE(wasShown_);
    EXPECT_EQ(findAlert(), nullptr);
  }
  static void press(QMessageBox& box, Qt::Key key) { QTest::keyClick(box.windowHandle(), key); }

  PlatformWithQtAlerts platform_;
  bool wasShown_ = false;
};

TEST_F(AlertTest, ShowsItsTextsAndItsButtons) {
  runAbout([](QMessageBox& box) {
    EXPECT_TRUE(box.isModal());
    EXPECT_EQ(box.icon(), QMessageBox::Information);
    EXPECT_EQ(QTextDocumentFragment::fromHtml(box.text()).toPlainText(),
              "Zephlin · Instant Caps Lock");
    EXPECT_TRUE(box.text().startsWith("<b>"));
    EXPECT_EQ(box.informativeText().split("\n\n").size(), 4);
    ASSERT_EQ(box.buttons().size(), 1);
    EXPECT_EQ(box.buttons().front()->text(), "OK");
    EXPECT_TRUE(box.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    box.buttons().front()->click();
  });
}

TEST_F(AlertTest, EnterEscAndItsCloseButtonCloseIt) {
  runAbout([](QMessageBox& box) { press(box, Qt::Key_Return); });
  runAbout([](QMessageBox& box) { press(box, Qt::Key_Escape); });
  runAbout([](QMessageBox& box) { box.windowHandle()->close(); });
}

TEST_F(AlertTest, TakesMarkupForText) {
  QtAlertPresenter presenter;
  QTimer::singleShot(0, [] {
    QMessageBox& box = *findAlert();
    EXPECT_EQ(QTextDocumentFragment::fromHtml(box.text()).toPlainText(), "1 < 2 & <i>3</i>");
    EXPECT_EQ(box.buttons().front()->text(), "R && D");
    box.reject();
  });
  presenter.runModal(
      {.messageText = "1 < 2 & <i>3</i>", .informativeText = "", .buttons = {"R & D"}});
}

TEST_F(AlertTest, EnterPushesTheFirstButtonAndEscClosesIfThereAreSeveral) {
  QtAlertPresenter presenter;
  for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
    const int expected = key == Qt::Key_Return ? 0 : 1;
    int pushed = -1;
    QTimer::singleShot(0, [&] {
      QMessageBox& box = *findAlert();
      ASSERT_TRUE(QTest::qWaitForWindowActive(&box));
      ASSERT_NE(box.defaultButton(), nullptr);
      EXPECT_EQ(box.defaultButton()->text(), "First");
      QObject::connect(&box, &QMessageBox::buttonClicked, &box, [&pushed](QAbstractButton* button) {
        pushed = button->text() == "First" ? 0 : 1;
      });
      press(box, key);
    });
    presenter.runModal({.messageText = "?", .informativeText = "", .buttons = {"First", "Second"}});
    EXPECT_EQ(pushed, expected);
  }
}

TEST_F(AlertTest, IsRaisedAndNotShownTwiceWhenItIsAskedForAgain) {
  runAbout([this](QMessageBox& box) {
    QWidget other;
    other.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    QTimer::singleShot(0, [&box] {
      for (QMessageBox* shown : findAlerts()) {
        if (shown != &box) {
          ADD_FAILURE() << "a second alert";
          shown->reject();
        }
      }
    });
    runAboutAlert(platform_);
    EXPECT_TRUE(QTest::qWaitForWindowActive(&box));
    box.accept();
  });
}

TEST_F(AlertTest, KeepsOtherWindowsFromTakingInputUntilItIsClosed) {
  QPushButton other("Other");
  int clicks = 0;
  QObject::connect(&other, &QPushButton::clicked, [&clicks] { ++clicks; });
  other.show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
  const auto click = [&other] {
    QTest::mouseClick(other.windowHandle(), Qt::LeftButton, {}, other.rect().center());
  };
  runAbout([&](QMessageBox& box) {
    click();
    box.accept();
  });
  EXPECT_EQ(clicks, 0);
  click();
  EXPECT_EQ(clicks, 1);
}

TEST_F(AlertTest, IsGoneWhenTheApplicationQuits) {
  bool returned = false;
  QTimer::singleShot(0, [&] {
    runAbout([](QMessageBox&) { QCoreApplication::quit(); });
    returned = true;
  });
  QApplication::exec();
  EXPECT_TRUE(returned);
}

TEST_F(AlertTest, TimersGoOnMeanwhile) {
  int ticks = 0;
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout, [&ticks] { ++ticks; });
  timer.start(1);
  runAbout([&ticks](QMessageBox& box) {
    EXPECT_TRUE(QTest::qWaitFor([&ticks] { return ticks > 3; }, 10000));
    box.accept();
  });
}

}  // namespace
}  // namespace zephlin
