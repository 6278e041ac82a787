#include <QCloseEvent>
#include <QScreen>

#include "Tests/Unit/Linux/Windows/TreeFixture.h"

namespace zephlin {
namespace {

class WindowTest : public TreeFixture {
 protected:
  WindowTest() {
    realise(std::make_shared<Label>("Text"));
    window_->setDelegate(delegate_);
  }
  /// As the window manager asks for it.
  void closeByItsButton() {
    QCloseEvent event;
    QApplication::sendEvent(widget().windowHandle(), &event);
  }

  std::shared_ptr<CountingDelegate> delegate_ = std::make_shared<CountingDelegate>();
};

TEST_F(WindowTest, IsNotShownBeforeItIsOrderedFront) {
  EXPECT_FALSE(widget().isVisible());
  showAndActivate();
  EXPECT_TRUE(widget().isVisible());
  EXPECT_TRUE(widget().isActiveWindow());
}

TEST_F(WindowTest, FloatsAndCanBeClosedButNotMinimisedOrMaximised) {
  const Qt::WindowFlags flags = widget().windowFlags();
  EXPECT_TRUE(flags.testFlag(Qt::WindowStaysOnTopHint));
  EXPECT_TRUE(flags.testFlag(Qt::WindowCloseButtonHint));
  EXPECT_TRUE(flags.testFlag(Qt::WindowTitleHint));
  EXPECT_FALSE(flags.testFlag(Qt::WindowMinimizeButtonHint));
  EXPECT_FALSE(flags.testFlag(Qt::WindowMaximizeButtonHint));
}

TEST_F(WindowTest, HasItsDescribedSizeUntilItIsFitted) {
  window_ = server_.makeWindow({.title = testTitle, .contentWidth = 300, .contentHeight = 100},
                               std::make_shared<Label>("Text"));
  EXPECT_EQ(widget().size(), QSize(300, 100));
  window_->setContentSizeToFit();
  EXPECT_EQ(widget().size(), label().sizeHint());
}

TEST_F(WindowTest, IsCentredOnTheFreePartOfTheScreen) {
  widget().move(1, 2);
  window_->center();
  const QPoint middle = widget().screen()->availableGeometry().center();
  EXPECT_LE((widget().frameGeometry().center() - middle).manhattanLength(), 2);
}

TEST_F(WindowTest, CallsItsDelegateOnceForEachClosing) {
  showAndActivate();
  closeByItsButton();
  EXPECT_FALSE(widget().isVisible());
  EXPECT_EQ(delegate_->closings, 1);
  showAndActivate();
  EXPECT_TRUE(widget().isVisible());
  EXPECT_EQ(delegate_->closings, 1);
  closeByItsButton();
  EXPECT_EQ(delegate_->closings, 2);
}

TEST_F(WindowTest, EscClosesIt) {
  showAndActivate();
  QTest::keyClick(widget().windowHandle(), Qt::Key_Escape);
  EXPECT_FALSE(widget().isVisible());
  EXPECT_EQ(delegate_->closings, 1);
}

TEST_F(WindowTest, OtherKeysDoNot) {
  showAndActivate();
  QTest::keyClick(widget().windowHandle(), Qt::Key_Return);
  QTest::keyClick(widget().windowHandle(), Qt::Key_CapsLock);
  EXPECT_TRUE(widget().isVisible());
}

TEST_F(WindowTest, HidingAndQuittingAreNotClosings) {
  showAndActivate();
  widget().hide();
  showAndActivate();
  widget().windowHandle()->close();
  EXPECT_FALSE(widget().isVisible());
  EXPECT_EQ(delegate_->closings, 0);
}

TEST_F(WindowTest, IsStillShownWhenItsDelegateIsTold) {
  class Observer : public WindowDelegate {
   public:
    void windowWillClose() override { wasVisible = findWindow(testTitle)->isVisible(); }
    bool wasVisible = false;
  };
  auto observer = std::make_shared<Observer>();
  window_->setDelegate(observer);
  showAndActivate();
  QTest::keyClick(widget().windowHandle(), Qt::Key_Escape);
  EXPECT_TRUE(observer->wasVisible);
  EXPECT_FALSE(widget().isVisible());
}

TEST_F(WindowTest, DoesNotKeepItsDelegateAlive) {
  const std::weak_ptr<CountingDelegate> kept = delegate_;
  delegate_.reset();
  EXPECT_TRUE(kept.expired());
  showAndActivate();
  closeByItsButton();
  EXPECT_FALSE(widget().isVisible());
}

TEST_F(WindowTest, GoesWithItsHandle) {
  showAndActivate();
  window_.reset();
  EXPECT_EQ(findWindow(testTitle), nullptr);
  EXPECT_EQ(delegate_->closings, 0);
}

TEST_F(WindowTest, APictureHasTheContentsSizeShownOrNot) {
  EXPECT_EQ(imageOf(window_->contentAsPng()).size(), widget().size());
  showAndActivate();
  EXPECT_EQ(imageOf(window_->contentAsPng()).size(), widget().size());
  closeByItsButton();
  EXPECT_EQ(imageOf(window_->contentAsPng()).size(), widget().size());
}

TEST_F(WindowTest, APictureIsOpaque) {
  const QImage image = imageOf(window_->contentAsPng());
  EXPECT_EQ(image.pixelColor(0, 0), widget().palette().color(QPalette::Window));
  EXPECT_EQ(image.pixelColor(0, 0).alpha(), 255);
}

TEST_F(WindowTest, ThereIsNoPictureOfNothing) {
  showAndActivate();
  label().resize(0, 0);
  EXPECT_EQ(window_->contentAsPng(), std::nullopt);
}

}  // namespace
}  // namespace zephlin
