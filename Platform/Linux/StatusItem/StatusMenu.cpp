#include "Platform/Linux/StatusItem/StatusMenu.h"

#include <QMetaObject>
#include <QPointer>
#include <QString>

namespace zephlin {

bool StatusMenu::isEnabled(const MenuItem& item) const {
  return menu_->autoenablesItems ? !std::holds_alternative<std::monostate>(item.action)
                                 : item.isEnabled;
}

void StatusMenu::update() {
  if (const auto delegate = menu_->delegate.lock()) {
    delegate->menuNeedsUpdate(*menu_);
  }
  changed_();
}

void StatusMenu::choose(const MenuItem& item) {
  if (isEnabled(item)) {
    QMetaObject::invokeMethod(
        &context_, [this, action = item.action] { perform(action); }, Qt::QueuedConnection);
  }
}

void StatusMenu::perform(const MenuAction& action) {
  const QPointer<QObject> alive(&context_);
  // Entries of a status menu have their own targets; no responder is asked.
  performAction(action);
  // Asking the delegate may start work, and a quit would wait for that.
  if (alive && !isTerminating_()) {
    update();
  }
}

QStringList shortcutOf(const MenuItem& item) {
  if (item.keyEquivalent.empty()) {
    return {};
  }
  QStringList keys;
  if ((item.keyEquivalentModifierMask & modifierCommand) != 0) {
    keys += QStringLiteral("Control");
  }
  if ((item.keyEquivalentModifierMask & modifierShift) != 0) {
    keys += QStringLiteral("Shift");
  }
  return keys << QString::fromStdString(item.keyEquivalent).toUpper();
}

}  // namespace zephlin
