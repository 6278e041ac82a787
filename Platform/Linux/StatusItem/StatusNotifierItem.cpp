#include "Platform/Linux/StatusItem/StatusNotifierItem.h"

#include <QCoreApplication>
#include <QGuiApplication>

#include "Platform/Linux/StatusItem/SymbolIcons.h"
#include "Platform/Linux/StatusItem/SymbolMasks.h"
#include "Platform/Linux/Windows/ActivationToken.h"

namespace zephlin {

namespace {

/// The item's name on the bus.
QString service() {
  return QStringLiteral("org.kde.StatusNotifierItem-%1-1").arg(QCoreApplication::applicationPid());
}

}  // namespace

StatusNotifierItem::StatusNotifierItem(StatusNotifierWatcher& watcher, StatusMenu& menu)
    : watcher_(watcher), menu_(menu), bus_(QDBusConnection::sessionBus()) {}

StatusNotifierItem::~StatusNotifierItem() {
  bus_.unregisterService(service());
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

void StatusNotifierItem::appear() {
  registerStatusNotifierTypes();
  bus_.registerObject(menuPath().path(), &menu_, QDBusConnection::ExportAllContents);
  bus_.registerObject(QStringLiteral("/StatusNotifierItem"), this,
                      QDBusConnection::ExportAllContents);
  bus_.registerService(service());
  watcher_.registerItem(service());
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
