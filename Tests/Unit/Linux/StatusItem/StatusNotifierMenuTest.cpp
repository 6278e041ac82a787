// The item's menu in a panel that draws it itself.

#include <gtest/gtest.h>

#include <QDBusArgument>
#include <optional>

#include "Platform/Linux/StatusItem/QtStatusBar.h"
#include "Platform/Linux/StatusItem/StatusNotifierTypes.h"
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

  QVariantList call(const char* method, const QVariantList& arguments) const {
    return bus_.call({shown_->service(), "/MenuBar", menuInterface, method}, arguments);
  }

  FakePanel panel_;
  BusConnection bus_{sessionBusAddress()};
  QtStatusBar bar_{[] { return false; }, [](bool) {}};
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

constexpr int noSuchEntry = 4711;

TEST_F(StatusNotifierMenuTest, AnUnderscoreInATitleIsNoMnemonic) {
  sample_->status = "snake_case";
  shown_->aboutToShow();
  EXPECT_EQ(shown_->entries()[1].label(), "snake__case");
}

TEST_F(StatusNotifierMenuTest, APanelLearnsWhetherItHasToReadTheLayoutAgain) {
  EXPECT_EQ(call("AboutToShow", {0}), QVariantList{false});
  sample_->isOn = false;
  EXPECT_EQ(call("AboutToShow", {0}), QVariantList{false});
  sample_->extraItems = 2;
  EXPECT_EQ(call("AboutToShow", {0}), QVariantList{true});
  EXPECT_EQ(shown_->signalsSent("LayoutUpdated"), 1);
  EXPECT_EQ(shown_->entries().size(), 8U);
}

TEST_F(StatusNotifierMenuTest, ACommandThatTakesASwitchsPlaceIsAnotherEntry) {
  const int before = shown_->entries()[3].id;
  sample_->isSwitchThere = false;
  shown_->aboutToShow();
  EXPECT_EQ(shown_->entries()[3].label(), "Command");
  EXPECT_FALSE(shown_->entries()[3].isCheckable());
  EXPECT_NE(shown_->entries()[3].id, before);
}

TEST_F(StatusNotifierMenuTest, ItIsReadInParts) {
  const int id = shown_->entries()[3].id;
  const QStringList names{"label", "no such property"};
  const auto rows = qdbus_cast<QList<MenuEntryProperties>>(
      call("GetGroupProperties", {QVariant::fromValue(QList<int>{id, noSuchEntry}), names})[0]);
  ASSERT_EQ(rows.size(), 1);
  EXPECT_EQ(rows[0].id, id);
  EXPECT_EQ(rows[0].properties, (QVariantMap{{"label", "Switch"}}));
  const auto everything = qdbus_cast<QList<MenuEntryProperties>>(
      call("GetGroupProperties", {QVariant::fromValue(QList<int>()), QStringList()})[0]);
  EXPECT_EQ(everything.size(), 6);
  const auto property = call("GetProperty", {id, "toggle-state"})[0].value<QDBusVariant>();
  EXPECT_EQ(property.variant(), 1);
  const auto layout =
      qdbus_cast<MenuLayout>(call("GetLayout", {id, -1, QStringList{"toggle-type"}})[1]);
  EXPECT_EQ(layout.id, id);
  EXPECT_EQ(layout.properties, (QVariantMap{{"toggle-type", "checkmark"}}));
  EXPECT_TRUE(layout.children.isEmpty());
  EXPECT_TRUE(
      qdbus_cast<MenuLayout>(call("GetLayout", {0, 0, QStringList()})[1]).children.isEmpty());
}

TEST_F(StatusNotifierMenuTest, EventsInAGroupAreObeyedAndUnknownOnesNamed) {
  const int id = shown_->entries()[3].id;
  const QList<MenuEvent> events{{id, "clicked", QDBusVariant(0), 0},
                                {noSuchEntry, "clicked", QDBusVariant(0), 0}};
  EXPECT_EQ(qdbus_cast<QList<int>>(call("EventGroup", {QVariant::fromValue(events)})[0]),
            QList<int>{noSuchEntry});
  EXPECT_TRUE(eventually([this] { return sample_->switchings == 1; }));
  const QVariantList reply =
      call("AboutToShowGroup", {QVariant::fromValue(QList<int>{0, noSuchEntry})});
  EXPECT_TRUE(qdbus_cast<QList<int>>(reply[0]).isEmpty());
  EXPECT_EQ(qdbus_cast<QList<int>>(reply[1]), QList<int>{noSuchEntry});
}

TEST_F(StatusNotifierMenuTest, CallersThatAreWrongGetAnError) {
  const int id = shown_->entries()[3].id;
  const QVariant nothing = QVariant::fromValue(QDBusVariant(0));
  EXPECT_THROW(call("GetLayout", {noSuchEntry, -1, QStringList()}), std::runtime_error);
  EXPECT_THROW(call("GetLayout", {"0", -1, QStringList()}), std::runtime_error);
  EXPECT_THROW(call("GetLayout", {}), std::runtime_error);
  EXPECT_THROW(call("GetGroupProperties", {QStringList(), QStringList()}), std::runtime_error);
  EXPECT_THROW(call("GetProperty", {noSuchEntry, "label"}), std::runtime_error);
  EXPECT_THROW(call("GetProperty", {id, "no such property"}), std::runtime_error);
  EXPECT_THROW(call("Event", {noSuchEntry, "clicked", nothing, 0U}), std::runtime_error);
  EXPECT_THROW(call("Event", {id, "clicked", 0, 0U}), std::runtime_error);
  EXPECT_THROW(call("Event", {id}), std::runtime_error);
  EXPECT_THROW(call("EventGroup", {QVariantList{id}}), std::runtime_error);
  EXPECT_THROW(call("AboutToShow", {-1}), std::runtime_error);
  EXPECT_THROW(call("AboutToShow", {"0"}), std::runtime_error);
  EXPECT_THROW(call("deleteLater", {}), std::runtime_error);
  call("Event", {id, "no such event", nothing, 0U});
  EXPECT_EQ(shown_->entries().size(), 6U);
  EXPECT_EQ(sample_->switchings, 0);
}

TEST_F(StatusNotifierMenuTest, AnEntryThatIsNotEnabledCannotBeChosen) {
  bool isChosen = false;
  sample_->commandChosen = [&isChosen] { isChosen = true; };
  sample_->isOn = false;
  shown_->aboutToShow();
  shown_->click(shown_->entries()[4].id);
  shown_->click(shown_->entries()[2].id);
  shown_->click(shown_->entries()[3].id);
  ASSERT_TRUE(eventually([this] { return sample_->switchings == 1; }));
  EXPECT_FALSE(isChosen);
}

TEST_F(StatusNotifierMenuTest, TheReplyToAClickDoesNotWaitForTheAction) {
  std::optional<QDBusPendingCall> click;
  bool wasAnswered = false;
  sample_->commandChosen = [&] { wasAnswered = eventually([&] { return click->isFinished(); }); };
  click = bus_.get().asyncCall(messageFor({shown_->service(), "/MenuBar", menuInterface, "Event"},
                                          eventArguments(shown_->entries()[4].id, "clicked")));
  EXPECT_TRUE(eventually([&wasAnswered] { return wasAnswered; }));
}

}  // namespace
}  // namespace zephlin::test
