// The item in a panel that shows StatusNotifier items.

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <optional>

#include "Platform/Linux/StatusItem/QtStatusBar.h"
#include "Platform/Linux/StatusItem/SymbolIcons.h"
#include "Tests/Support/FakePanel.h"
#include "Tests/Support/FakeXEmbedTray.h"
#include "Tests/Support/PrivateDesktop.h"
#include "Tests/Support/QtLoop.h"
#include "Tests/Support/TrayItem.h"

namespace zephlin::test {
namespace {

const auto* const environment = ::testing::AddGlobalTestEnvironment(
    new PrivateDesktop(PrivateDesktop::SessionBus::Present, PrivateDesktop::Application::Present));

/// The desktop's icons, with or without the program's.
class InstalledIcons {
 public:
  explicit InstalledIcons(bool areOursThere) {
    const QString icons = directory_.filePath("icons/hicolor/scalable/status");
    QDir().mkpath(icons);
    if (areOursThere) {
      QFile::copy(ICONS "/zephlin-capslock-symbolic.svg", icons + "/zephlin-capslock-symbolic.svg");
    }
    qputenv("XDG_DATA_DIRS", directory_.path().toUtf8());
  }

 private:
  QTemporaryDir directory_;
};

class StatusNotifierItemTest : public ::testing::Test {
 protected:
  void makeItem() {
    item_ = bar_.makeStatusItem();
    item_->setButtonImage(bar_.systemSymbol("capslock", "Zephlin"));
    item_->setButtonToolTip("Zephlin: disabled");
  }
  /// As the panel that has just come sees the item.
  [[nodiscard]] bool appearsIn(FakePanel& panel) {
    if (!eventually([&panel] { return panel.registrations() == 1; })) {
      return false;
    }
    shown_.emplace(panel.item());
    return true;
  }

  void call(const char* method, const QVariantList& arguments) const {
    bus_.call({shown_->service(), "/StatusNotifierItem", itemInterface, method}, arguments);
  }

  InstalledIcons icons_{true};
  BusConnection bus_{sessionBusAddress()};
  std::vector<bool> presences_;
  QtStatusBar bar_{[] { return false; }, [this](bool isInTray) { presences_.push_back(isInTray); }};
  std::unique_ptr<StatusItem> item_;
  std::optional<TrayItem> shown_;
};

TEST_F(StatusNotifierItemTest, AppearsWhenThePanelIsThereAlready) {
  FakePanel panel;
  makeItem();
  EXPECT_TRUE(item_->hasButton());
  ASSERT_TRUE(appearsIn(panel));
}

TEST_F(StatusNotifierItemTest, AppearsWhenThePanelStartsLater) {
  makeItem();
  QCoreApplication::processEvents();
  FakePanel panel;
  ASSERT_TRUE(appearsIn(panel));
}

TEST_F(StatusNotifierItemTest, WaitsForAHostIfThereIsOnlyAWatcher) {
  FakePanel panel(FakePanel::Host::Absent);
  makeItem();
  ASSERT_TRUE(eventually([&panel] { return panel.timesAskedForHost() > 0; }));
  QCoreApplication::processEvents();
  EXPECT_EQ(panel.registrations(), 0);
  panel.registerHost();
  ASSERT_TRUE(appearsIn(panel));
}

TEST_F(StatusNotifierItemTest, IsNotLostToAnXEmbedTrayThatThePanelBringsUpFirst) {
  const FakeXEmbedTray xembedTray;
  makeItem();
  QCoreApplication::processEvents();
  FakePanel panel;
  ASSERT_TRUE(appearsIn(panel));
}

TEST_F(StatusNotifierItemTest, ComesBackWhenThePanelRestarts) {
  std::optional<FakePanel> panel(std::in_place);
  makeItem();
  ASSERT_TRUE(appearsIn(*panel));
  for (int restart = 0; restart < 3; ++restart) {
    panel.reset();
    panel.emplace();
    shown_.reset();
    ASSERT_TRUE(appearsIn(*panel));
    EXPECT_EQ(shown_->text("IconName"), "zephlin-capslock-symbolic");
  }
}

class ShownStatusNotifierItemTest : public StatusNotifierItemTest {
 protected:
  void SetUp() override {
    makeItem();
    ASSERT_TRUE(appearsIn(panel_));
  }

  FakePanel panel_;
};

TEST_F(ShownStatusNotifierItemTest, IsKnownByTheApplicationsName) {
  EXPECT_EQ(shown_->text("Id"), "Zephlin");
  EXPECT_EQ(shown_->text("Title"), "Zephlin");
}

TEST_F(ShownStatusNotifierItemTest, IsAMenuToPanelsAndHasNothingToActivate) {
  EXPECT_TRUE(shown_->property("ItemIsMenu").toBool());
  EXPECT_EQ(shown_->text("Status"), "Active");
  for (const char* method : {"Activate", "ContextMenu"}) {
    EXPECT_THROW(call(method, {10, 10}), std::runtime_error) << method;
  }
  call("SecondaryActivate", {10, 10});
  call("Scroll", {120, "vertical"});
  EXPECT_TRUE(QGuiApplication::allWindows().isEmpty());
}

TEST_F(ShownStatusNotifierItemTest, NamesItsIconIfItIsInstalledAndSendsPicturesToo) {
  EXPECT_EQ(shown_->text("IconName"), "zephlin-capslock-symbolic");
  EXPECT_EQ(shown_->pictureWidths(), (std::vector<int>{22, 44}));
}

TEST_F(StatusNotifierItemTest, SendsOnlyPicturesIfItsIconIsNotInstalled) {
  const InstalledIcons none(false);
  FakePanel panel;
  makeItem();
  ASSERT_TRUE(appearsIn(panel));
  EXPECT_EQ(shown_->text("IconName"), "");
  EXPECT_EQ(shown_->pictureWidths(), (std::vector<int>{22, 44}));
  EXPECT_EQ(shown_->pictures()[0].pixels, symbolPicture("zephlin-capslock-symbolic", 22));
}

TEST_F(StatusNotifierItemTest, LeavesAnXEmbedTrayForAPanelThatComesLater) {
  FakeXEmbedTray xembedTray;
  makeItem();
  ASSERT_TRUE(eventually([&xembedTray] { return xembedTray.hasIcon(); }));
  std::optional<FakePanel> panel(std::in_place);
  ASSERT_TRUE(appearsIn(*panel));
  EXPECT_TRUE(QGuiApplication::allWindows().isEmpty());
  panel.reset();
  EXPECT_TRUE(eventually([] { return !QGuiApplication::allWindows().isEmpty(); }));
}

TEST_F(StatusNotifierItemTest, ReportsThatItIsInNoTrayAndWhenItIsInOneAfterThat) {
  makeItem();
  ASSERT_TRUE(eventually([this] { return !presences_.empty(); }));
  EXPECT_EQ(presences_, std::vector{false});
  std::optional<FakePanel> panel(std::in_place);
  ASSERT_TRUE(appearsIn(*panel));
  EXPECT_EQ(presences_, (std::vector{false, true}));
  panel.reset();
  ASSERT_TRUE(eventually([this] { return presences_.size() == 3; }));
  EXPECT_FALSE(presences_.back());
}

TEST_F(StatusNotifierItemTest, ReportsNothingWhileItIsInATray) {
  FakePanel panel;
  makeItem();
  runLoopFor(QtStatusBar::patience + std::chrono::milliseconds(100));
  EXPECT_TRUE(presences_.empty());
}

TEST_F(ShownStatusNotifierItemTest, KeepsItsPlaceWithoutAnImage) {
  item_->setButtonImage(std::nullopt);
  ASSERT_TRUE(eventually([this] { return shown_->signalsSent("NewIcon") == 1; }));
  EXPECT_EQ(shown_->text("IconName"), "");
  EXPECT_FALSE(shown_->pictureWidths().empty());
}

TEST_F(ShownStatusNotifierItemTest, ShowsItsToolTip) {
  EXPECT_EQ(shown_->toolTip(), "Zephlin: disabled");
  item_->setButtonToolTip("Zephlin: instant Caps Lock is ON");
  ASSERT_TRUE(eventually([this] { return shown_->signalsSent("NewToolTip") == 1; }));
  EXPECT_EQ(shown_->toolTip(), "Zephlin: instant Caps Lock is ON");
}

TEST_F(ShownStatusNotifierItemTest, SettingWhatIsShownAlreadySendsNothing) {
  item_->setButtonImage(bar_.systemSymbol("capslock", "Zephlin"));
  item_->setButtonToolTip("Zephlin: disabled");
  // What is sent later arrives later.
  item_->setButtonImage(bar_.systemSymbol("capslock.fill", "Zephlin"));
  item_->setButtonToolTip("Zephlin: instant Caps Lock is ON");
  ASSERT_TRUE(eventually([this] { return shown_->signalsSent("NewToolTip") > 0; }));
  EXPECT_EQ(shown_->sent().size(), 2U);
}

TEST_F(ShownStatusNotifierItemTest, IsGoneWhenItIsDestroyed) {
  ASSERT_TRUE(panel_.isItemOnBus());
  item_.reset();
  EXPECT_TRUE(eventually([this] { return !panel_.isItemOnBus(); }));
}

TEST_F(StatusNotifierItemTest, MayBeDestroyedBeforeAnyPanelCame) {
  makeItem();
  item_.reset();
  FakePanel panel;
  makeItem();
  ASSERT_TRUE(appearsIn(panel));
}

}  // namespace
}  // namespace zephlin::test
