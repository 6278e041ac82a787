// The item's menu in a panel that draws it itself.

#include <gtest/gtest.h>

#include <QDBusArgument>

#include "Platform/Linux/StatusItem/QtStatusBar.h"
#include "Tests/Support/FakePanel.h"
#include "Tests/Support/QtLoop.h"
#include "Tests/Support/TrayItem.h"
#include "Tests/Unit/Linux/StatusItem/SampleMenu.h"

namespace zephlin::test {
namespace {

class StatusNotifierMenuTest : public ::testing::Test {
 protected:
  StatusNotifierMenuTest() {
    item_ = bar_.makeStatusItem();
    item_->setButtonImage(bar_.systemSymbol("capslock", "Zephlin"));
    item_->setMenu(sample_->menu);
    eventually([this] { return panel_.registrations() == 1; });
    shown_ = std::make_unique<TrayItem>(panel_.item());
  }

  /// Labels and identifiers.
  [[nodiscard]] std::vector<std::pair<int, std::string>> entries() {
    std::vector<std::pair<int, std::string>> entries;
    for (const MenuEntry& entry : shown_->entries()) {
      entries.emplace_back(entry.id, entry.label());
    }
    return entries;
  }

  FakePanel panel_;
  QtStatusBar bar_{[] { return false; }};
  std::shared_ptr<SampleMenu> sample_ = SampleMenu::make();
  std::unique_ptr<StatusItem> item_;
  std::unique_ptr<TrayItem> shown_;
};

TEST_F(StatusNotifierMenuTest, IsNotAskedForWithoutATray) {
  const auto later = SampleMenu::make();
  const auto item = bar_.makeStatusItem();
  item->setMenu(later->menu);
  EXPECT_EQ(later->rebuilds, 0);
}

TEST_F(StatusNotifierMenuTest, IsCompleteBeforeThePanelSaysThatItOpensIt) {
  const auto layout = shown_->entries();
  ASSERT_EQ(layout.size(), 6U);
  EXPECT_EQ(layout[0].properties["enabled"], false);
  EXPECT_EQ(layout[1].label(), "Checking…");
  EXPECT_EQ(layout[2].properties["type"], "separator");
  EXPECT_EQ(layout[3].properties["toggle-type"], "checkmark");
  EXPECT_EQ(layout[3].properties["toggle-state"], 1);
  EXPECT_FALSE(layout[4].properties.contains("toggle-type"));
  EXPECT_EQ(layout[5].label(), "Quit");
  EXPECT_TRUE(layout[5].properties.contains("shortcut"));
}

TEST_F(StatusNotifierMenuTest, IsFreshWhenThePanelOpensItAndSendsOnlyWhatChanged) {
  const auto before = entries();
  const int rebuilds = sample_->rebuilds;
  sample_->status = "On";
  shown_->aboutToShow();
  EXPECT_EQ(sample_->rebuilds, rebuilds + 1);
  auto expected = before;
  expected[1].second = "On";
  EXPECT_EQ(entries(), expected);
  EXPECT_EQ(shown_->signalsSent("ItemsPropertiesUpdated"), 1);
  EXPECT_EQ(shown_->signalsSent("LayoutUpdated"), 0);
}

TEST_F(StatusNotifierMenuTest, TheStatusLineChangesWhileItIsOpen) {
  const auto before = entries();
  shown_->aboutToShow();
  sample_->statusLine.lock()->title = "On";
  item_->menuTitlesDidChange();
  ASSERT_TRUE(eventually([this] { return shown_->signalsSent("ItemsPropertiesUpdated") == 1; }));
  EXPECT_EQ(shown_->signalsSent("LayoutUpdated"), 0);
  const auto updated = shown_->sent().back().arguments().at(0).value<QDBusArgument>();
  int id = 0;
  QVariantMap properties;
  updated.beginArray();
  updated.beginStructure();
  updated >> id >> properties;
  updated.endStructure();
  updated.endArray();
  EXPECT_EQ(id, before[1].first);
  EXPECT_EQ(properties["label"].toString().toStdString(), "On");
}

TEST_F(StatusNotifierMenuTest, OpeningItAgainAndAgainSendsNothing) {
  const auto before = entries();
  shown_->aboutToShow();
  shown_->aboutToShow();
  EXPECT_EQ(entries(), before);
  EXPECT_TRUE(shown_->sent().empty());
}

TEST_F(StatusNotifierMenuTest, AChosenSwitchIsShownSwitchedBeforeItIsOpenedAgain) {
  shown_->click(shown_->entries()[3].id);
  ASSERT_TRUE(eventually([this] { return !sample_->isOn && sample_->rebuilds > 1; }));
  const auto layout = shown_->entries();
  ASSERT_EQ(layout.size(), 6U);
  EXPECT_EQ(layout[3].label(), "Switch");
  EXPECT_EQ(layout[3].properties["toggle-state"], 0);
  EXPECT_EQ(layout[4].properties["enabled"], false);
}

TEST_F(StatusNotifierMenuTest, EntriesKeepTheirIdentifiersThoughTheyAreSwitched) {
  const auto before = entries();
  for (const bool isOn : {false, true}) {
    sample_->isOn = isOn;
    shown_->aboutToShow();
    EXPECT_EQ(entries(), before);
  }
}

TEST_F(StatusNotifierMenuTest, EveryClickOfManyInARowIsObeyed) {
  constexpr int clicks = 1001;
  shown_->clickAtOnce(shown_->entries()[3].id, clicks);
  ASSERT_TRUE(eventually([this] { return sample_->switchings >= clicks; }));
  EXPECT_EQ(sample_->switchings, clicks);
  EXPECT_FALSE(sample_->isOn);
  EXPECT_EQ(shown_->entries()[3].properties["toggle-state"], 0);
}

TEST_F(StatusNotifierMenuTest, AnotherMenuTakesItsPlace) {
  const auto other = SampleMenu::make();
  other->extraItems = 2;
  item_->setMenu(other->menu);
  ASSERT_TRUE(eventually([&other] { return other->rebuilds > 0; }));
  sample_.reset();
  EXPECT_EQ(shown_->entries().size(), 8U);
}

TEST_F(StatusNotifierMenuTest, TheItemMayBeDestroyedByAnEntry) {
  sample_->commandChosen = [this] { item_.reset(); };
  shown_->click(shown_->entries()[4].id);
  EXPECT_TRUE(eventually([this] { return !panel_.isItemOnBus(); }));
  EXPECT_FALSE(item_);
}

}  // namespace
}  // namespace zephlin::test
