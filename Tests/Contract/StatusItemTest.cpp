#include "Tests/Contract/ContractTest.h"

namespace zephlin::contract {
namespace {

class SampleMenu final : public MenuDelegate {
 public:
  void menuNeedsUpdate(Menu& menu) override {
    ++rebuilds;
    menu.removeAllItems();
    menu.add(std::make_shared<MenuItem>("Zephlin · Sample & Menu", MenuAction()))->isEnabled =
        false;
    statusLine = menu.add(std::make_shared<MenuItem>(status, MenuAction()));
    menu.add(MenuItem::separator());
    menu.add(std::make_shared<MenuItem>("Switch", [this] { isOn = !isOn; }))->isChecked = isOn;
    menu.add(std::make_shared<MenuItem>("Off Limits", [this] { forbidden = true; }))->isEnabled =
        false;
    menu.add(std::make_shared<MenuItem>(
        "Command…", [this] { ++commands; }, "k"));
  }

  std::weak_ptr<MenuItem> statusLine;
  std::string status = "Checking…";
  bool isOn = true;
  bool forbidden = false;
  int commands = 0;
  int rebuilds = 0;
};

class StatusItemTest : public ContractTest {
 protected:
  StatusItemTest() {
    menu_->delegate = sample_;
    menu_->autoenablesItems = false;
    item_->setButtonImage(symbol());
    item_->setMenu(menu_);
  }

  std::optional<SymbolImage> symbol() {
    return platform().systemStatusBar().systemSymbol("capslock.fill", "Zephlin");
  }

  std::vector<ShownMenuItem> openedMenu() {
    EXPECT_TRUE(desktop().openMenu());
    return desktop().menuItems();
  }

  std::shared_ptr<SampleMenu> sample_ = std::make_shared<SampleMenu>();
  std::shared_ptr<Menu> menu_ = std::make_shared<Menu>();
  std::unique_ptr<StatusItem> item_ = platform().systemStatusBar().makeStatusItem();
};

TEST_F(StatusItemTest, TheSymbolsOfTheApplicationAreThere) {
  for (const char* const name : {"capslock", "capslock.fill", "exclamationmark.triangle"}) {
    const auto image = platform().systemStatusBar().systemSymbol(name, "Description");
    EXPECT_EQ(image, (SymbolImage{name, "Description", false}));
  }
}

TEST_F(StatusItemTest, TheButtonShowsItsImageAndNone) {
  ASSERT_TRUE(item_->hasButton());
  EXPECT_TRUE(runUntil([&] { return desktop().isStatusImageShown(); }));
  item_->setButtonImage(std::nullopt);
  EXPECT_TRUE(runUntil([&] { return !desktop().isStatusImageShown(); }));
  item_->setButtonImage(symbol());
  EXPECT_TRUE(runUntil([&] { return desktop().isStatusImageShown(); }));
}

TEST_F(StatusItemTest, TheButtonShowsItsToolTip) {
  item_->setButtonToolTip("First");
  EXPECT_TRUE(runUntil([&] { return desktop().statusToolTip() == "First"; }));
  item_->setButtonToolTip("Second");
  EXPECT_TRUE(runUntil([&] { return desktop().statusToolTip() == "Second"; }));
}

TEST_F(StatusItemTest, TheMenuIsShownAsItIs) {
  EXPECT_EQ(openedMenu(),
            (std::vector<ShownMenuItem>{{.title = "Zephlin · Sample & Menu", .isEnabled = false},
                                        {.title = "Checking…"},
                                        {.title = "", .isSeparator = true},
                                        {.title = "Switch", .isChecked = true},
                                        {.title = "Off Limits", .isEnabled = false},
                                        {.title = "Command…", .keyEquivalent = "Command-K"}}));
}

TEST_F(StatusItemTest, TheDelegateIsAskedEachTimeBeforeTheMenuOpens) {
  openedMenu();
  desktop().closeMenu();
  const int rebuilds = sample_->rebuilds;
  sample_->status = "On";
  EXPECT_EQ(openedMenu().at(1).title, "On");
  EXPECT_GT(sample_->rebuilds, rebuilds);
  EXPECT_EQ(desktop().menuItems().size(), 6U);
}

TEST_F(StatusItemTest, AnEntryChangesWhileTheMenuIsOpen) {
  openedMenu();
  sample_->statusLine.lock()->title = "Done";
  item_->menuTitlesDidChange();
  EXPECT_TRUE(runUntil([&] { return desktop().menuItems().at(1).title == "Done"; }));
}

TEST_F(StatusItemTest, AChosenEntryActsOnce) {
  openedMenu();
  EXPECT_TRUE(desktop().chooseMenuItem("Command…"));
  EXPECT_TRUE(runUntil([&] { return sample_->commands == 1; }));
  settle();
  EXPECT_EQ(sample_->commands, 1);
  EXPECT_TRUE(sample_->isOn);
}

TEST_F(StatusItemTest, ASwitchIsShownAsItIsAtTheNextOpening) {
  openedMenu();
  EXPECT_TRUE(desktop().chooseMenuItem("Switch"));
  EXPECT_TRUE(runUntil([&] { return !sample_->isOn; }));
  EXPECT_FALSE(openedMenu().at(3).isChecked);
}

TEST_F(StatusItemTest, AnEntryThatIsNotEnabledCannotBeChosen) {
  openedMenu();
  desktop().chooseMenuItem("Off Limits");
  settle();
  EXPECT_FALSE(sample_->forbidden);
}

TEST_F(StatusItemTest, TimersTickWhileTheMenuIsOpen) {
  openedMenu();
  int ticks = 0;
  const auto timer = dispatch().scheduleTimer(Seconds{0.01}, Seconds{}, [&] { ++ticks; });
  EXPECT_TRUE(runUntil([&] { return ticks == 2; }));
}

}  // namespace
}  // namespace zephlin::contract
