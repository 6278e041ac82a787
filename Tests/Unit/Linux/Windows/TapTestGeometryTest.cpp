#include <QAbstractButton>
#include <vector>

#include "Tests/Unit/Linux/Windows/TapTestOnQt.h"

namespace zephlin {
namespace {

class TapTestGeometry : public TapTestOnQt {
 protected:
  void SetUp() override { show(); }
};

TEST_F(TapTestGeometry, TheContentIs408WideAndFillsTheWindow) {
  EXPECT_EQ(widget().width(), 408);
  EXPECT_EQ(placeOf(child(widget(), 0)), QRect(QPoint(), widget().size()));
  EXPECT_EQ(placeOf(stack()), QRect(QPoint(), widget().size()));
}

TEST_F(TapTestGeometry, TheRowsKeepTheirDistances) {
  EXPECT_EQ(placeOf(row(0)).top(), 22);
  std::vector<int> gaps;
  for (int index = 1; index < 8; ++index) {
    gaps.push_back(placeOf(row(index)).top() - placeOf(row(index - 1)).bottom() - 1);
  }
  EXPECT_EQ(gaps, (std::vector<int>{4, 18, 16, 4, 18, 14, 12}));
  EXPECT_EQ(widget().height() - placeOf(row(7)).bottom() - 1, 16);
}

TEST_F(TapTestGeometry, EveryRowIsCentred) {
  for (int index = 0; index < 8; ++index) {
    const QRect place = placeOf(row(index));
    EXPECT_NEAR(place.left(), 408 - place.right() - 1, 1) << index;
    EXPECT_GE(place.left(), 24) << index;
  }
}

TEST_F(TapTestGeometry, TheCardsShareTheRowEqually) {
  EXPECT_EQ(placeOf(row(2)).left(), 24);
  EXPECT_EQ(row(2).width(), 360);
  EXPECT_EQ(placeOf(card(0)).left(), 24);
  EXPECT_EQ(card(0).width(), 174);
  EXPECT_EQ(placeOf(card(1)).left(), 24 + 174 + 12);
  EXPECT_EQ(card(1).width(), 174);
  EXPECT_EQ(card(0).height(), row(2).height());
  EXPECT_EQ(card(1).height(), row(2).height());
}

TEST_F(TapTestGeometry, TheCardsKeepTheirInsetsAndTheirSpacing) {
  for (int index = 0; index < 2; ++index) {
    const QRect box = placeOf(card(index));
    EXPECT_EQ(placeOf(cardStack(index)), box.adjusted(8, 16, -8, -14));
    const QRect value = placeOf(cardLabel(index, 0));
    const QRect caption = placeOf(cardLabel(index, 1));
    EXPECT_EQ(value.top(), box.top() + 16);
    EXPECT_EQ(caption.top() - value.bottom() - 1, 2);
    EXPECT_EQ(caption.bottom(), box.bottom() - 14);
    EXPECT_NEAR(value.center().x(), box.center().x(), 1);
    EXPECT_NEAR(caption.center().x(), box.center().x(), 1);
  }
}

TEST_F(TapTestGeometry, ThePillIs360WideAroundItsVerdict) {
  EXPECT_EQ(placeOf(row(3)).left(), 24);
  EXPECT_EQ(row(3).width(), 360);
  EXPECT_EQ(placeOf(verdict()), placeOf(row(3)).adjusted(14, 9, -14, -9));
}

TEST_F(TapTestGeometry, PointsAreDeviceIndependentPixels) {
  const auto expectFont = [](const QWidget& label, int pixelSize, QFont::Weight weight) {
    EXPECT_EQ(label.font().pixelSize(), pixelSize);
    EXPECT_EQ(label.font().weight(), weight);
    EXPECT_EQ(label.font().family(), QApplication::font().family());
  };
  expectFont(row(0), 17, QFont::Bold);
  expectFont(row(1), 13, QFont::Normal);
  expectFont(cardLabel(0, 0), 40, QFont::Bold);
  expectFont(cardLabel(1, 1), 11, QFont::DemiBold);
  expectFont(verdict(), 13, QFont::DemiBold);
  expectFont(latency(), 11, QFont::Normal);
  expectFont(row(5), 11, QFont::Normal);
  expectFont(note(), 10, QFont::Normal);
}

TEST_F(TapTestGeometry, TheHeightStaysWhenVerdictAndLatencyChange) {
  const QSize before = widget().size();
  desktop().capsLockKey().setLatency(0.012);
  tap(3);
  desktop().runFor(0.1);
  settle();
  EXPECT_EQ(latency().text(), "Last tap registered in 12 ms");
  EXPECT_EQ(widget().size(), before);
  tap(3, false);
  settle();
  EXPECT_EQ(verdict().text(), "3 taps went missing. The delay is on");
  EXPECT_EQ(widget().size(), before);
}

using TapTestNote = TapTestOnQt;

TEST_F(TapTestNote, TheWindowGrowsForANoteOfTwoLines) {
  showWithoutPressChannel();
  const int lineHeight = note().fontMetrics().height();
  EXPECT_GE(note().height(), 2 * lineHeight);
  EXPECT_EQ(widget().width(), 408);
  EXPECT_EQ(widget().height() - placeOf(note()).bottom() - 1, 16);
  EXPECT_EQ(note().height(), note().heightForWidth(note().width()));
}

TEST_F(TapTestNote, TheWindowShrinksAgainWhenTheNoteDoes) {
  showWithoutPressChannel();
  const int tall = widget().height();
  desktop().hidDevices().failOpening(std::nullopt);
  QTest::keyClick(widget().windowHandle(), Qt::Key_Escape);
  show();
  settle();
  EXPECT_LT(widget().height(), tall);
  EXPECT_EQ(widget().height() - placeOf(note()).bottom() - 1, 16);
}

TEST_F(TapTestGeometry, TheUserCannotResizeTheWindow) {
  EXPECT_EQ(widget().minimumSize(), widget().size());
  EXPECT_EQ(widget().maximumSize(), widget().size());
}

}  // namespace
}  // namespace zephlin
