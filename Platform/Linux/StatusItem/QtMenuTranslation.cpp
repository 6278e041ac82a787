#include "Platform/Linux/StatusItem/QtMenuTranslation.h"

#include <QAction>
#include <QKeySequence>
#include <QPointer>
#include <QString>
#include <utility>

namespace zephlin {

namespace {

/// To QAction an ampersand marks a mnemonic.
QString textOf(const MenuItem& item) {
  return QString::fromStdString(item.title).replace(u'&', QLatin1String("&&"));
}

/// Command is Control on this desktop.
QKeySequence shortcutOf(const MenuItem& item) {
  if (item.keyEquivalent.empty()) {
    return {};
  }
  QString keys;
  if ((item.keyEquivalentModifierMask & modifierCommand) != 0) {
    keys += QLatin1String("Ctrl+");
  }
  if ((item.keyEquivalentModifierMask & modifierShift) != 0) {
    keys += QLatin1String("Shift+");
  }
  return QKeySequence(keys + QString::fromStdString(item.keyEquivalent).toUpper(),
                      QKeySequence::PortableText);
}

bool isEnabled(const Menu& menu, const MenuItem& item) {
  return menu.autoenablesItems ? !std::holds_alternative<std::monostate>(item.action)
                               : item.isEnabled;
}

/// Whether the action can become the item's by a change that panels notice. They do not notice that
/// an entry becomes checkable or stops being so: Qt 6.4 never lists a property as removed.
bool canShow(const QAction& action, const MenuItem& item) {
  return action.isSeparator() == item.isSeparator &&
         action.isCheckable() == item.isChecked.isSwitch();
}

std::unique_ptr<QAction> makeAction(const MenuItem& item) {
  auto action = std::make_unique<QAction>();
  action->setSeparator(item.isSeparator);
  action->setCheckable(item.isChecked.isSwitch());
  // Shown beside the title, and not a shortcut of any window.
  action->setShortcutContext(Qt::WidgetShortcut);
  action->setShortcutVisibleInContextMenu(true);
  return action;
}

}  // namespace

QtMenuTranslation::QtMenuTranslation(std::shared_ptr<Menu> menu,
                                     std::function<bool()> isTerminating)
    : menu_(std::move(menu)), isTerminating_(std::move(isTerminating)) {
  QObject::connect(&qtMenu_, &QMenu::aboutToShow, &context_, [this] { update(); });
  showItems();
}

void QtMenuTranslation::update() {
  if (const auto delegate = menu_->delegate.lock()) {
    delegate->menuNeedsUpdate(*menu_);
  }
  showItems();
}

void QtMenuTranslation::showItems() {
  const auto& items = menu_->items();
  for (std::size_t index = 0; index < items.size(); ++index) {
    show(items[index], index);
  }
  while (static_cast<std::size_t>(qtMenu_.actions().size()) > items.size()) {
    delete qtMenu_.actions().constLast();
  }
}

void QtMenuTranslation::showTitles() {
  const auto actions = qtMenu_.actions();
  const auto& items = menu_->items();
  for (std::size_t index = 0; index < items.size(); ++index) {
    if (QAction* const action = actions.value(static_cast<qsizetype>(index))) {
      action->setText(textOf(*items[index]));
    }
  }
}

void QtMenuTranslation::show(const std::shared_ptr<MenuItem>& item, std::size_t index) {
  QAction& action = actionAt(index, *item);
  action.setText(textOf(*item));
  action.setShortcut(shortcutOf(*item));
  action.setEnabled(isEnabled(*menu_, *item));
  action.setChecked(static_cast<bool>(item->isChecked));
  action.disconnect(&context_);
  QObject::connect(
      &action, &QAction::triggered, &context_, [this, chosen = item->action] { perform(chosen); },
      Qt::QueuedConnection);
}

QAction& QtMenuTranslation::actionAt(std::size_t index, const MenuItem& item) {
  const auto actions = qtMenu_.actions();
  QAction* present = actions.value(static_cast<qsizetype>(index));
  if (present && canShow(*present, item)) {
    return *present;
  }
  QAction* made = makeAction(item).release();
  made->setParent(&qtMenu_);
  qtMenu_.insertAction(present, made);
  delete present;
  return *made;
}

void QtMenuTranslation::perform(const MenuAction& action) {
  const QPointer<QObject> alive(&context_);
  // Entries of a status menu have their own targets; no responder is asked.
  performAction(action);
  // Asking the delegate may start work, and a quit would wait for that.
  if (alive && !isTerminating_()) {
    update();
  }
}

}  // namespace zephlin
