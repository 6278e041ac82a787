#include <QAccessible>
#include <QPushButton>

#include "Tests/Unit/Linux/Windows/TapTestOnQt.h"

namespace zephlin {
namespace {

class Accessibility : public TapTestOnQt {
 protected:
  void SetUp() override { show(); }
};

QString nameOf(QWidget& widget) {
  return QAccessible::queryAccessibleInterface(&widget)->text(QAccessible::Name);
}

QAccessible::Role roleOf(QWidget& widget) {
  return QAccessible::queryAccessibleInterface(&widget)->role();
}

TEST_F(Accessibility, TheWindowAndItsTextsHaveNames) {
  EXPECT_EQ(nameOf(widget()), "Tap Test");
  EXPECT_EQ(nameOf(row(0)), "Is your Caps Lock instant?");
  EXPECT_EQ(nameOf(verdict()), "Waiting for taps…");
  EXPECT_EQ(nameOf(note()), "Zephlin only watches the Caps Lock key here, nothing else you type.");
  EXPECT_EQ(roleOf(row(0)), QAccessible::StaticText);
}

TEST_F(Accessibility, ACountIsReadWithItsCaption) {
  EXPECT_EQ(nameOf(cardLabel(0, 0)), "0 Taps");
  EXPECT_EQ(nameOf(cardLabel(1, 0)), "0 Registered");
  EXPECT_EQ(nameOf(cardLabel(1, 1)), "Registered");
  tap(2);
  tap(1, false);
  EXPECT_EQ(nameOf(cardLabel(0, 0)), "3 Taps");
  EXPECT_EQ(nameOf(cardLabel(1, 0)), "2 Registered");
  EXPECT_EQ(nameOf(verdict()), "1 tap went missing. The delay is on");
}

TEST_F(Accessibility, TheVerdictIsANotification) {
  EXPECT_EQ(roleOf(verdict()), QAccessible::Notification);
  EXPECT_EQ(roleOf(latency()), QAccessible::StaticText);
}

TEST_F(Accessibility, TheButtonIsAButton) {
  EXPECT_EQ(nameOf(row(6)), "Reset");
  EXPECT_EQ(roleOf(row(6)), QAccessible::Button);
  EXPECT_NE(row(6).focusPolicy() & Qt::TabFocus, 0);
}

}  // namespace
}  // namespace zephlin
