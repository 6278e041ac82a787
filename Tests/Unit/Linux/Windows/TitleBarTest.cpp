// Windows under a Wayland compositor that draws no frames.

#include <QAbstractButton>
#include <filesystem>
#include <string>

#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/TestProcess.h"
#include "Tests/Unit/Linux/Windows/TreeFixture.h"

/// Qt 6.4 ends without freeing its objects of the Wayland client library.
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libwayland-client.so";
}

namespace zephlin {
namespace {

/// Qt's application in a compositor without a screen or a seat, for as long as the tests run.
class FramelessDesktop final : public testing::Environment {
 public:
  void SetUp() override {
    std::filesystem::permissions(folder_.path(), std::filesystem::perms(0700));
    qputenv("XDG_RUNTIME_DIR", folder_.path().c_str());
    compositor_ = std::make_unique<test::TestProcess>(std::vector<std::string>{
        "/usr/bin/weston", "--backend=headless-backend.so", "--socket=frameless", "--no-config"});
    compositor_->waitForErrors("weston-desktop-shell");
    qputenv("WAYLAND_DISPLAY", "frameless");
    qputenv("QT_QPA_PLATFORM", "wayland");
    application_ = std::make_unique<QApplication>(argumentCount_, arguments_);
    QApplication::setStyle("Fusion");
    QApplication::setQuitOnLastWindowClosed(false);
  }
  void TearDown() override {
    application_.reset();
    compositor_.reset();
  }

 private:
  test::TemporaryDirectory folder_;
  std::unique_ptr<test::TestProcess> compositor_;
  int argumentCount_ = 1;
  char name_[5] = "test";
  char* arguments_[2] = {name_, nullptr};
  std::unique_ptr<QApplication> application_;
};

const testing::Environment* const environment =
    testing::AddGlobalTestEnvironment(new FramelessDesktop);

class TitleBarTest : public TreeFixture {
 protected:
  TitleBarTest() {
    realise(std::make_shared<Label>("Text"));
    window_->setDelegate(delegate_);
    show();
  }
  void show() {
    window_->makeKeyAndOrderFront();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&widget()));
  }
  QList<QAbstractButton*> closeButtons() {
    QList<QAbstractButton*> buttons = widget().findChildren<QAbstractButton*>();
    erase_if(buttons,
             [](const QAbstractButton* button) { return button->accessibleName() != "Close"; });
    return buttons;
  }

  std::shared_ptr<CountingDelegate> delegate_ = std::make_shared<CountingDelegate>();
};

TEST_F(TitleBarTest, ReplacesTheDecorationOfQt) {
  EXPECT_TRUE(widget().windowHandle()->frameMargins().isNull());
  const QList<QLabel*> labels = widget().findChildren<QLabel*>();
  EXPECT_TRUE(std::any_of(labels.begin(), labels.end(), [](const QLabel* label) {
    return label->isVisible() && label->text() == testTitle;
  }));
  EXPECT_EQ(widget().minimumSize(), widget().maximumSize());
}

TEST_F(TitleBarTest, ItsButtonClosesTheWindowAsTheUserDoes) {
  ASSERT_EQ(closeButtons().size(), 1);
  QTest::mouseClick(closeButtons().front(), Qt::LeftButton);
  EXPECT_EQ(delegate_->closings, 1);
  EXPECT_FALSE(widget().isVisible());
  show();
  EXPECT_EQ(closeButtons().size(), 1);
}

TEST_F(TitleBarTest, LeavesTheKeyboardsFocusToTheContent) {
  EXPECT_EQ(closeButtons().front()->focusPolicy(), Qt::NoFocus);
}

TEST_F(TitleBarTest, AWindowWithoutTheFocusIsMappedAnewToComeToTheFront) {
  class Hidings : public QObject {
   public:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
      count += event->type() == QEvent::Hide ? 1 : 0;
      return false;
    }
    int count = 0;
  } hidings;
  widget().installEventFilter(&hidings);
  show();
  EXPECT_EQ(hidings.count, 1);
  EXPECT_TRUE(widget().isVisible());
  EXPECT_EQ(delegate_->closings, 0);
}

}  // namespace
}  // namespace zephlin
