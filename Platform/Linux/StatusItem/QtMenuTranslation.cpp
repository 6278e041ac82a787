#include "Platform/Linux/StatusItem/QtMenuTranslation.h"

#include <QKeySequence>
#include <QString>

namespace zephlin {

namespace {

/// To QAction an ampersand marks a mnemonic.
QString textOf(const MenuItem& item) {
  return QString::fromStdString(item.title).replace(u'&', QLatin1String("&&"));
}

QKeySequence keySequenceOf(const MenuItem& item) {
  const QString keys = shortcutOf(item).join(u'+');
  return QKeySequence(QString(keys).replace(QLatin1String("Control"), QLatin1String("Ctrl")),
                      QKeySequence::PortableText);
}

}  // namespace

QtMenuTranslation::QtMenuTranslation(StatusMenu& menu) : menu_(menu) {
  QObject::connect(&qtMenu_, &QMenu::aboutToShow, &qtMenu_, [this] { menu_.update(); });
  QObject::connect(&qtMenu_, &QMenu::triggered, &qtMenu_,
                   [this](const QAction* action) { choose(action); });
  show();
}

void QtMenuTranslation::show() {
  const auto& items = menu_.items();
  for (std::size_t index = 0; index < items.size(); ++index) {
    const MenuItem& item = *items[index];
    QAction& action = actionAt(index, item);
    action.setText(textOf(item));
    action.setShortcut(keySequenceOf(item));
    action.setEnabled(menu_.isEnabled(item));
    action.setCheckable(item.isChecked.isSwitch());
    action.setChecked(static_cast<bool>(item.isChecked));
  }
  while (static_cast<std::size_t>(qtMenu_.actions().size()) > items.size()) {
    delete qtMenu_.actions().constLast();
  }
}

QAction& QtMenuTranslation::actionAt(std::size_t index, const MenuItem& item) {
  QAction* action = qtMenu_.actions().value(static_cast<qsizetype>(index));
  if (!action) {
    action = qtMenu_.addAction(QString());
    // Shown beside the title, and not a shortcut of any window.
    action->setShortcutContext(Qt::WidgetShortcut);
    action->setShortcutVisibleInContextMenu(true);
  }
  action->setSeparator(item.isSeparator);
  return *action;
}

void QtMenuTranslation::choose(const QAction* action) {
  const auto index = static_cast<std::size_t>(qtMenu_.actions().indexOf(action));
  if (index < menu_.items().size()) {
    menu_.choose(*menu_.items()[index]);
  }
}

}  // namespace zephlin
