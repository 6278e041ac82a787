#include <gtest/gtest.h>

#include "Platform/Simulated/SimulatedDesktop.h"
#include "Zephlin/MainMenu.h"

namespace zephlin {
namespace {

struct Entry {
  std::string title;
  std::string keyEquivalent;
  ModifierFlags modifiers;
  bool operator==(const Entry&) const = default;
};

std::vector<Entry> entriesOf(const Menu& menu) {
  std::vector<Entry> entries;
  for (const auto& item : menu.items()) {
    entries.push_back(item->isSeparator ? Entry{"-", "", 0}
                                        : Entry{item->title, item->keyEquivalent,
                                                item->keyEquivalentModifierMask});
  }
  return entries;
}

class MainMenuTest : public testing::Test {
 protected:
  MainMenuTest() { MainMenu::install(desktop_.application()); }

  const Menu& submenu(std::size_t index) {
    return *desktop_.application().mainMenu()->items().at(index)->submenu;
  }

  SimulatedDesktop desktop_;
};

constexpr ModifierFlags command = 0x100000;

TEST_F(MainMenuTest, TheFirstMenuHidesAndQuits) {
  EXPECT_EQ(submenu(0).title, "");
  EXPECT_EQ(entriesOf(submenu(0)),
            (std::vector<Entry>{
                {"Hide Zephlin", "h", command}, {"-", "", 0}, {"Quit Zephlin", "q", command}}));
}

TEST_F(MainMenuTest, TheSecondMenuEdits) {
  EXPECT_EQ(submenu(1).title, "Edit");
  EXPECT_EQ(entriesOf(submenu(1)), (std::vector<Entry>{{"Undo", "z", command},
                                                       {"Redo", "z", 0x120000},
                                                       {"-", "", 0},
                                                       {"Cut", "x", command},
                                                       {"Copy", "c", command},
                                                       {"Paste", "v", command},
                                                       {"Select All", "a", command}}));
}

TEST_F(MainMenuTest, ThereAreTwoUntitledMenus) {
  EXPECT_EQ(entriesOf(*desktop_.application().mainMenu()),
            (std::vector<Entry>{{"", "", command}, {"", "", command}}));
}

TEST_F(MainMenuTest, KeyEquivalentsSendTheirActionsAlongTheResponderChain) {
  desktop_.pressKeyEquivalent("z", command);
  desktop_.pressKeyEquivalent("z", modifierShift | command);
  for (const char* key : {"x", "c", "v", "a", "h"}) {
    desktop_.pressKeyEquivalent(key);
  }
  using enum ResponderAction;
  EXPECT_EQ(desktop_.application().responderActions(),
            (std::vector<ResponderAction>{Undo, Redo, Cut, Copy, Paste, SelectAll, Hide}));
  EXPECT_FALSE(desktop_.application().hasTerminated());
  desktop_.pressKeyEquivalent("q");
  EXPECT_TRUE(desktop_.application().hasTerminated());
}

}  // namespace
}  // namespace zephlin
