#import "StandIns/AppKit/Shown.h"
#include "StandIns/CallLog.h"
#include "StandIns/Knobs.h"
#import "Support/StandInMac.h"

namespace zephlin::test {
namespace {

class RebuildingDelegate : public MenuDelegate {
 public:
  void menuNeedsUpdate(Menu& menu) override {
    menu.removeAllItems();
    menu.add(std::make_shared<MenuItem>("Text", std::monostate()))->isEnabled = false;
    menu.add(MenuItem::separator());
    toggled = menu.add(std::make_shared<MenuItem>("Toggle", [this] { ++actions; }));
    toggled->isChecked = true;
    menu.add(std::make_shared<MenuItem>(
        "Quit", [this] { ++actions; }, "q"));
  }

  std::shared_ptr<MenuItem> toggled;
  int actions = 0;
};

class StatusItemTest : public MacTest {
 protected:
  void SetUp() override { item_ = platform().systemStatusBar().makeStatusItem(); }

  std::shared_ptr<RebuildingDelegate> attachMenu() {
    auto delegate = std::make_shared<RebuildingDelegate>();
    auto menu = std::make_shared<Menu>();
    menu->autoenablesItems = false;
    menu->delegate = delegate;
    item_->setMenu(menu);
    return delegate;
  }

  static StandInSymbolImage* image() {
    return static_cast<StandInSymbolImage*>([[standins::shownStatusItem() button] image]);
  }

  std::unique_ptr<StatusItem> item_;
};

TEST_F(StatusItemTest, TheItemIsSquareAndShownUntilItIsDestroyed) {
  EXPECT_EQ(standins::calls({"NSStatusBar"}), Calls{"NSStatusBar statusItemWithLength:-2"});
  EXPECT_TRUE(item_->hasButton());
  item_.reset();
  EXPECT_EQ(standins::calls({"NSStatusBar"}).back(), "NSStatusBar removeStatusItem");
  EXPECT_TRUE(standins::shownStatusItem() == nil);
}

TEST_F(StatusItemTest, TheSymbolIsATemplateWithItsDescription) {
  auto symbol = platform().systemStatusBar().systemSymbol("capslock.fill", "Zephlin");
  ASSERT_TRUE(symbol);
  EXPECT_FALSE(symbol->isTemplate);
  symbol->isTemplate = true;
  item_->setButtonImage(symbol);
  EXPECT_TRUE([image()->_symbolName isEqual:@"capslock.fill"]);
  EXPECT_TRUE([image()->_description isEqual:@"Zephlin"]);
  EXPECT_TRUE([image() isTemplate]);
}

TEST_F(StatusItemTest, NoSymbolClearsTheButton) {
  item_->setButtonImage(platform().systemStatusBar().systemSymbol("capslock", "Zephlin"));
  ASSERT_TRUE(image() != nil);
  standins::knobs().symbols.clear();
  const auto missing = platform().systemStatusBar().systemSymbol("capslock", "Zephlin");
  EXPECT_EQ(missing, std::nullopt);
  item_->setButtonImage(missing);
  EXPECT_TRUE(image() == nil);
}

TEST_F(StatusItemTest, WithoutAButtonNothingIsShownAndNothingFails) {
  standins::knobs().statusItemsHaveButtons = false;
  item_ = platform().systemStatusBar().makeStatusItem();
  EXPECT_FALSE(item_->hasButton());
  item_->setButtonImage(SymbolImage{"capslock", "Zephlin", true});
  item_->setButtonToolTip("text");
}

TEST_F(StatusItemTest, TheMenuIsAttachedEmptyWithItsDelegateAndWithoutEnablingItems) {
  const auto delegate = attachMenu();
  EXPECT_EQ(standins::calls({"NSStatusItem"}),
            Calls{"NSStatusItem setMenu: delegate set, autoenables 0, 0 items"});
}

TEST_F(StatusItemTest, AnActionIsPerformedAlsoWhenItRebuildsTheMenu) {
  const auto delegate = attachMenu();
  NSMenu* const menu = openStatusMenu();
  delegate->toggled->action = [] {};
  [menu performActionForItemAtIndex:2];
  EXPECT_EQ(delegate->actions, 1);
}

TEST_F(StatusItemTest, AMenuWhoseDelegateHasGoneStaysAsItIs) {
  auto delegate = attachMenu();
  openStatusMenu();
  delegate.reset();
  EXPECT_EQ([openStatusMenu() numberOfItems], 4);
}

TEST_F(StatusItemTest, NothingOfTheMenuOutlivesTheItem) {
  const int menus = liveObjectsOf("NSMenu");
  const int items = liveObjectsOf("NSMenuItem");
  {
    const AutoreleasePool pool;
    item_ = platform().systemStatusBar().makeStatusItem();
    const auto delegate = attachMenu();
    openStatusMenu();
    openStatusMenu();
    item_.reset();
  }
  EXPECT_EQ(liveObjectsOf("NSMenu"), menus);
  EXPECT_EQ(liveObjectsOf("NSMenuItem"), items);
  EXPECT_EQ(liveObjectsOf("ZephlinActionTarget"), 0);
  EXPECT_EQ(liveObjectsOf("ZephlinMenuDelegate"), 0);
}

}  // namespace
}  // namespace zephlin::test
