#include <QLabel>

#include "Tests/Unit/Linux/Windows/TapTestOnQt.h"

namespace zephlin {
namespace {

class TapTestGeometry : public TapTestOnQt {
 protected:
  void SetUp() override { show(); }
};

// Where everything is, and its fonts, are in Tests/Contract/Golden.
TEST_F(TapTestGeometry, LabelsHaveTheDesktopsFontFamily) {
  for (const QLabel* const label : widget().findChildren<QLabel*>()) {
    EXPECT_EQ(label->font().family(), QApplication::font().family());
  }
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

}  // namespace
}  // namespace zephlin
