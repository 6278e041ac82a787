// The item in a tray of the older kind.

#include <gtest/gtest.h>

#include <optional>

#include "Platform/Linux/StatusItem/QtStatusBar.h"
#include "Tests/Support/FakeXEmbedTray.h"
#include "Tests/Support/PrivateDesktop.h"
#include "Tests/Support/QtLoop.h"
#include "Tests/Unit/Linux/StatusItem/SampleMenu.h"

namespace zephlin::test {
namespace {

const auto* const environment = ::testing::AddGlobalTestEnvironment(
    new PrivateDesktop(PrivateDesktop::SessionBus::Absent, PrivateDesktop::Application::Present));

class XEmbedItemTest : public ::testing::Test {
 protected:
  void makeItem() {
    item_ = bar_.makeStatusItem();
    item_->setButtonImage(bar_.systemSymbol("capslock.fill", "Zephlin"));
    item_->setMenu(sample_->menu);
  }
  [[nodiscard]] static bool appearsIn(FakeXEmbedTray& tray, const QColor& colour) {
    return eventually([&tray, &colour] { return tray.hasIcon() && tray.iconColour() == colour; });
  }

  QtStatusBar bar_{[] { return false; }, [](bool) {}};
  std::shared_ptr<SampleMenu> sample_ = SampleMenu::make();
  std::unique_ptr<StatusItem> item_;
};

TEST_F(XEmbedItemTest, AppearsInTheColourOfTheTray) {
  FakeXEmbedTray tray;
  makeItem();
  EXPECT_TRUE(appearsIn(tray, Qt::red));
}

TEST_F(XEmbedItemTest, AppearsWhenTheTrayStartsLater) {
  makeItem();
  QCoreApplication::processEvents();
  FakeXEmbedTray tray;
  EXPECT_TRUE(appearsIn(tray, Qt::red));
  EXPECT_EQ(sample_->rebuilds, 1);
}

TEST_F(XEmbedItemTest, ComesBackWhenTheTrayRestarts) {
  std::optional<FakeXEmbedTray> tray(std::in_place);
  makeItem();
  ASSERT_TRUE(appearsIn(*tray, Qt::red));
  for (int restart = 0; restart < 3; ++restart) {
    tray.reset();
    tray.emplace();
    ASSERT_TRUE(appearsIn(*tray, Qt::red));
  }
}

TEST_F(XEmbedItemTest, FollowsTheColoursOfTheTray) {
  std::optional<FakeXEmbedTray> tray(std::in_place);
  makeItem();
  ASSERT_TRUE(appearsIn(*tray, Qt::red));
  tray->setForeground(Qt::green);
  ASSERT_TRUE(appearsIn(*tray, Qt::green));
  tray.reset();
  tray.emplace();
  ASSERT_TRUE(appearsIn(*tray, Qt::red));
  tray->setForeground(Qt::blue);
  EXPECT_TRUE(appearsIn(*tray, Qt::blue));
}

TEST_F(XEmbedItemTest, ChangesItsImage) {
  FakeXEmbedTray tray;
  makeItem();
  ASSERT_TRUE(appearsIn(tray, Qt::red));
  item_->setButtonImage(bar_.systemSymbol("capslock", "Zephlin"));
  EXPECT_TRUE(appearsIn(tray, Qt::black)) << "the outlined arrow shows the panel inside";
}

}  // namespace
}  // namespace zephlin::test
