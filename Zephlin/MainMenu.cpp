#include "Zephlin/MainMenu.h"

namespace zephlin::MainMenu {

namespace {

std::shared_ptr<MenuItem> makeItem(const char* title, ResponderAction action,
                                   const char* keyEquivalent) {
  return std::make_shared<MenuItem>(title, action, keyEquivalent);
}

std::shared_ptr<Menu> makeApplicationMenu() {
  auto menu = std::make_shared<Menu>();
  menu->add(makeItem("Hide Zephlin", ResponderAction::Hide, "h"));
  menu->add(MenuItem::separator());
  menu->add(makeItem("Quit Zephlin", ResponderAction::Terminate, "q"));
  return menu;
}

std::shared_ptr<Menu> makeEditMenu() {
  auto menu = std::make_shared<Menu>("Edit");
  menu->add(makeItem("Undo", ResponderAction::Undo, "z"));
  menu->add(makeItem("Redo", ResponderAction::Redo, "z"))->keyEquivalentModifierMask =
      modifierShift | modifierCommand;
  menu->add(MenuItem::separator());
  menu->add(makeItem("Cut", ResponderAction::Cut, "x"));
  menu->add(makeItem("Copy", ResponderAction::Copy, "c"));
  menu->add(makeItem("Paste", ResponderAction::Paste, "v"));
  menu->add(makeItem("Select All", ResponderAction::SelectAll, "a"));
  return menu;
}

}  // namespace

void install(Application& application) {
  auto mainMenu = std::make_shared<Menu>();
  for (auto& submenu : {makeApplicationMenu(), makeEditMenu()}) {
    mainMenu->add(std::make_shared<MenuItem>("", std::monostate()))->submenu = submenu;
  }
  application.setMainMenu(mainMenu);
}

}  // namespace zephlin::MainMenu
