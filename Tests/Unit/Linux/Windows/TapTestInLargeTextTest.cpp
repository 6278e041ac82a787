// The tap test for users of large text, and of desktops that read from right to left.

#include <QFontInfo>
#include <QMessageBox>

#include "Tests/Unit/Linux/Windows/TapTestOnQt.h"

namespace zephlin {
namespace {

/// The desktop's font, and the direction of its language.
struct Desktop {
  double textScale = 1;
  Qt::LayoutDirection direction = Qt::LeftToRight;
};

void PrintTo(const Desktop& desktop, std::ostream* out) {
  *out << desktop.textScale * 100 << " % "
       << (desktop.direction == Qt::LeftToRight ? "left to right" : "right to left");
}

constexpr qreal usualPointSize = 10;

class TapTestInLargeText : public TapTestOnQt, public testing::WithParamInterface<Desktop> {
 protected:
  void SetUp() override { setDesktop(GetParam()); }
  void TearDown() override {
    QApplication::setFont(font_);
    QApplication::setLayoutDirection(Qt::LeftToRight);
  }

  static void setDesktop(const Desktop& desktop) {
    QFont font = QApplication::font();
    font.setPointSizeF(usualPointSize * desktop.textScale);
    QApplication::setFont(font);
    QApplication::setLayoutDirection(desktop.direction);
  }

  /// No text has less room than it takes, and each is inside what is around it.
  void expectNothingCutOff() {
    for (QWidget* const part : widget().findChildren<QWidget*>()) {
      EXPECT_TRUE(part->parentWidget()->rect().contains(part->geometry()));
    }
    for (QLabel* const label : widget().findChildren<QLabel*>()) {
      EXPECT_GE(label->width(), label->sizeHint().width()) << label->text().toStdString();
      const int needed = label->hasHeightForWidth() ? label->heightForWidth(label->width())
                                                    : label->sizeHint().height();
      EXPECT_GE(label->height(), needed) << label->text().toStdString();
    }
    for (const QPushButton* const button : widget().findChildren<QPushButton*>()) {
      EXPECT_GE(button->width(), button->minimumSizeHint().width());
      EXPECT_GE(button->height(), button->minimumSizeHint().height());
    }
    EXPECT_TRUE(widget().screen()->availableGeometry().contains(
        QRect(widget().screen()->availableGeometry().topLeft(), widget().size())));
  }

  const QFont font_ = QApplication::font();
};

TEST_P(TapTestInLargeText, NothingIsCutOffInAnyState) {
  show();
  expectNothingCutOff();
  desktop().capsLockKey().setLatency(0.123);
  tap(12);
  desktop().runFor(0.5);
  settle();
  expectNothingCutOff();
  tap(100, false);
  settle();
  EXPECT_EQ(verdict().text(), "100 taps went missing. The delay is on");
  expectNothingCutOff();
}

TEST_P(TapTestInLargeText, NothingIsCutOffOfTheLongNote) {
  showWithoutPressChannel();
  settle();
  expectNothingCutOff();
}

TEST_P(TapTestInLargeText, TextsGrowWithTheDesktopsFontAsFarAsTheScreenHasRoom) {
  const int usualTitle = 17;
  show();
  const double scale = QFontInfo(row(0).font()).pixelSize() / double{usualTitle};
  EXPECT_NEAR(widget().width(), 408 * scale, 15);
  if (widget().height() < 0.8 * widget().screen()->availableSize().height()) {
    EXPECT_NEAR(scale, GetParam().textScale, 0.04);
  } else {
    EXPECT_GT(scale, 1);
  }
}

TEST_P(TapTestInLargeText, TheCardsFollowTheDirection) {
  show();
  const bool isFirstLeft = placeOf(card(0)).x() < placeOf(card(1)).x();
  EXPECT_EQ(isFirstLeft, GetParam().direction == Qt::LeftToRight);
}

INSTANTIATE_TEST_SUITE_P(Desktops, TapTestInLargeText,
                         testing::Values(Desktop{1}, Desktop{1.5}, Desktop{2},
                                         Desktop{1, Qt::RightToLeft}, Desktop{1.5, Qt::RightToLeft},
                                         Desktop{2, Qt::RightToLeft}));

using TapTestWhileTextGrows = TapTestInLargeText;

TEST_P(TapTestWhileTextGrows, AnOpenWindowGrowsToo) {
  setDesktop({1});
  show();
  tap(1);
  const int width = widget().width();
  setDesktop(GetParam());
  settle();
  settle();
  EXPECT_GT(widget().width(), 1.3 * width);
  expectNothingCutOff();
  EXPECT_EQ(verdict().text(), "Every tap registered. Instant");
  tap(1, false);
  EXPECT_EQ(verdict().text(), "1 tap went missing. The delay is on");
}

INSTANTIATE_TEST_SUITE_P(Desktops, TapTestWhileTextGrows, testing::Values(Desktop{1.5}));

}  // namespace
}  // namespace zephlin
