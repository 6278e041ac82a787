#include "Platform/Linux/StatusItem/StatusNotifierItem.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QUuid>

#include "Platform/Linux/StatusItem/SymbolIcons.h"
#include "Platform/Linux/StatusItem/SymbolMasks.h"
#include "Platform/Linux/Windows/ActivationToken.h"

namespace zephlin {

StatusNotifierItem::StatusNotifierItem(StatusMenu& menu)
    : menu_(menu),
      bus_(QDBusConnection::connectToBus(QDBusConnection::SessionBus,
                                         QUuid::createUuid().toString())) {
  registerStatusNotifierTypes();
  bus_.registerObject(menuPath().path(), &menu_, QDBusConnection::ExportAllContents);
  bus_.registerObject(QStringLiteral("/StatusNotifierItem"), this,
                      QDBusConnection::ExportAllContents);
}

StatusNotifierItem::~StatusNotifierItem() {
  QDBusConnection::disconnectFromBus(bus_.name());
}

void StatusNotifierItem::setIconName(const std::optional<QString>& iconName) {
  if (iconName != iconName_) {
    iconName_ = iconName;
    Q_EMIT NewIcon();
  }
}

void StatusNotifierItem::setToolTip(const QString& text) {
  toolTip_ = text;
  Q_EMIT NewToolTip();
}

void StatusNotifierItem::ProvideXdgActivationToken(const QString& token) {
  setActivationToken(token);
}

QString StatusNotifierItem::id() {
  return QCoreApplication::applicationName();
}

QString StatusNotifierItem::title() {
  return QGuiApplication::applicationDisplayName();
}

// A panel that is given the name of an icon that is not installed may show a sign of its own for
// that (Plasma 5.27) instead of the pictures.
QString StatusNotifierItem::shownIconName() const {
  return iconName_ && isInstalledIcon(*iconName_) ? *iconName_ : QString();
}

QList<StatusNotifierPicture> StatusNotifierItem::pictures() const {
  QList<StatusNotifierPicture> pictures;
  for (const int size : symbolMaskSizes) {
    pictures.append({size, size, symbolPicture(iconName_, size)});
  }
  return pictures;
}

StatusNotifierToolTip StatusNotifierItem::shownToolTip() const {
  return {{}, {}, toolTip_, {}};
}

QDBusObjectPath StatusNotifierItem::menuPath() {
  return QDBusObjectPath(QStringLiteral("/MenuBar"));
}

}  // namespace zephlin
