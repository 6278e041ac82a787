#include <gtest/gtest.h>

#include <QAction>
#include <QCoreApplication>

#include "Platform/Linux/StatusItem/QtMenuTranslation.h"
#include "Tests/Unit/Linux/StatusItem/SampleMenu.h"

namespace zephlin::test {
namespace {

class QtMenuTranslationTest : public ::testing::Test {
 protected:
  QtMenuTranslationTest() {
    menu_->setMenu(sample_->menu);
    menu_->update();
  }

  [[nodiscard]] QAction& entry(int index) const {
    return *translation_->qtMenu().actions().at(index);
  }

  std::shared_ptr<SampleMenu> sample_ = SampleMenu::make();
  bool isTerminating_ = false;
  std::unique_ptr<StatusMenu> menu_ = std::make_unique<StatusMenu>(
      [this] { return isTerminating_; }, [this] { translation_->show(); });
  std::unique_ptr<QtMenuTranslation> translation_ = std::make_unique<QtMenuTranslation>(*menu_);
};

constexpr int titleLine = 0;
constexpr int statusLine = 1;
constexpr int separator = 2;
constexpr int switchEntry = 3;
constexpr int command = 4;
constexpr int quit = 5;

TEST_F(QtMenuTranslationTest, EveryItemHasItsEntryAndItsState) {
  ASSERT_EQ(translation_->qtMenu().actions().size(), SampleMenu::itemsWithoutExtras);
  EXPECT_FALSE(entry(titleLine).isEnabled());
  EXPECT_EQ(entry(statusLine).text().toStdString(), "Checking…");
  EXPECT_TRUE(entry(separator).isSeparator());
  EXPECT_FALSE(entry(switchEntry).isSeparator());
  EXPECT_TRUE(entry(command).isEnabled());
}

TEST_F(QtMenuTranslationTest, AnAmpersandInATitleIsNoMnemonic) {
  EXPECT_EQ(entry(titleLine).text().toStdString(), "Salt && Pepper");
}

TEST_F(QtMenuTranslationTest, ASwitchIsCheckableAndACommandIsNot) {
  EXPECT_TRUE(entry(switchEntry).isCheckable());
  EXPECT_TRUE(entry(switchEntry).isChecked());
  EXPECT_FALSE(entry(command).isCheckable());
}

TEST_F(QtMenuTranslationTest, ASwitchKeepsItsActionAndStaysCheckableWhenItIsSwitched) {
  const auto before = translation_->qtMenu().actions();
  sample_->isOn = false;
  menu_->update();
  EXPECT_EQ(translation_->qtMenu().actions(), before);
  EXPECT_TRUE(entry(switchEntry).isCheckable());
  EXPECT_FALSE(entry(switchEntry).isChecked());
}

TEST_F(QtMenuTranslationTest, ACommandThatTakesASwitchsPlaceIsNotCheckable) {
  sample_->isSwitchThere = false;
  menu_->update();
  EXPECT_EQ(entry(switchEntry).text().toStdString(), "Command");
  EXPECT_FALSE(entry(switchEntry).isCheckable());
}

TEST_F(QtMenuTranslationTest, CommandIsControlAndIsShownWithoutBecomingAShortcutOfWindows) {
  EXPECT_EQ(entry(quit).shortcut(), QKeySequence(Qt::CTRL | Qt::Key_Q));
  EXPECT_EQ(entry(quit).shortcutContext(), Qt::WidgetShortcut);
  EXPECT_TRUE(entry(quit).isShortcutVisibleInContextMenu());
  EXPECT_TRUE(entry(command).shortcut().isEmpty());
}

TEST_F(QtMenuTranslationTest, EntriesThatStayInPlaceKeepTheirActions) {
  const auto before = translation_->qtMenu().actions();
  sample_->status = "On";
  menu_->update();
  EXPECT_EQ(translation_->qtMenu().actions(), before);
  EXPECT_EQ(entry(statusLine).text().toStdString(), "On");
}

TEST_F(QtMenuTranslationTest, WhatHasNotChangedIsLeftAlone) {
  int changes = 0;
  for (const QAction* action : translation_->qtMenu().actions()) {
    QObject::connect(action, &QAction::changed, &translation_->qtMenu(), [&changes] { ++changes; });
  }
  menu_->update();
  EXPECT_EQ(changes, 0);
  sample_->status = "On";
  menu_->update();
  EXPECT_EQ(changes, 1);
}

TEST_F(QtMenuTranslationTest, ItemsThatComeAndGoLeaveTheOthersInOrder) {
  sample_->extraItems = 3;
  menu_->update();
  ASSERT_EQ(translation_->qtMenu().actions().size(), SampleMenu::itemsWithoutExtras + 3);
  EXPECT_EQ(entry(quit).text().toStdString(), "Extra");
  EXPECT_TRUE(entry(quit).shortcut().isEmpty());
  EXPECT_EQ(entry(quit + 3).text().toStdString(), "Quit");
  sample_->extraItems = 0;
  menu_->update();
  ASSERT_EQ(translation_->qtMenu().actions().size(), SampleMenu::itemsWithoutExtras);
  EXPECT_EQ(entry(quit).text().toStdString(), "Quit");
}

TEST_F(QtMenuTranslationTest, ATitleThatChangesIsShownWhenAsked) {
  sample_->statusLine.lock()->title = "On & on";
  menu_->itemsDidChange();
  EXPECT_EQ(entry(statusLine).text().toStdString(), "On && on");
}

TEST_F(QtMenuTranslationTest, AnItemOfAnEarlierBuildChangesNothing) {
  const auto former = sample_->statusLine.lock();
  menu_->update();
  former->title = "Outdated";
  menu_->itemsDidChange();
  EXPECT_EQ(entry(statusLine).text().toStdString(), "Checking…");
}

TEST_F(QtMenuTranslationTest, OpeningTheMenuAsksForFreshItems) {
  sample_->status = "On";
  Q_EMIT translation_->qtMenu().aboutToShow();
  EXPECT_EQ(entry(statusLine).text().toStdString(), "On");
}

TEST_F(QtMenuTranslationTest, AnActionRunsFromTheEventLoopAndTheMenuIsFreshAfterIt) {
  entry(switchEntry).trigger();
  EXPECT_TRUE(sample_->isOn);
  QCoreApplication::processEvents();
  EXPECT_FALSE(sample_->isOn);
  EXPECT_FALSE(entry(command).isEnabled());
}

TEST_F(QtMenuTranslationTest, AnActionThatWasChosenRunsOnceThoughTheMenuIsRebuiltMeanwhile) {
  int chosen = 0;
  sample_->commandChosen = [&chosen] { ++chosen; };
  menu_->update();
  entry(command).trigger();
  menu_->update();
  QCoreApplication::processEvents();
  EXPECT_EQ(chosen, 1);
}

TEST_F(QtMenuTranslationTest, AnActionMayDestroyTheMenu) {
  sample_->commandChosen = [this] {
    translation_.reset();
    menu_.reset();
  };
  entry(command).trigger();
  const int rebuilds = sample_->rebuilds;
  QCoreApplication::processEvents();
  EXPECT_FALSE(menu_);
  EXPECT_EQ(sample_->rebuilds, rebuilds);
}

TEST_F(QtMenuTranslationTest, AnActionThatTerminatesTheApplicationIsNotFollowedByQuestions) {
  sample_->commandChosen = [this] { isTerminating_ = true; };
  const int rebuilds = sample_->rebuilds;
  entry(command).trigger();
  QCoreApplication::processEvents();
  EXPECT_TRUE(isTerminating_);
  EXPECT_EQ(sample_->rebuilds, rebuilds);
}

TEST_F(QtMenuTranslationTest, AMenuThatEnablesItsItemsEnablesThoseWithAnAction) {
  sample_->menu->autoenablesItems = true;
  sample_->isOn = false;
  menu_->update();
  EXPECT_TRUE(entry(command).isEnabled());
  EXPECT_FALSE(entry(statusLine).isEnabled());
}

}  // namespace
}  // namespace zephlin::test
