#include "Tests/Desktop/Harness/TrayItem.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusObjectPath>

#include "Tests/Desktop/Harness/Waiting.h"

namespace zephlin::test {
namespace {

/// What a watcher's entry names: a bus name and, behind its first slash, an object.
struct Address {
  QString service;
  QString path;
};

Address addressIn(const QString& item) {
  const auto slash = item.indexOf('/');
  return slash < 0 ? Address{item, "/StatusNotifierItem"}
                   : Address{item.left(slash), item.mid(slash)};
}

Address waitForItem(PrivateBus& bus, pid_t process) {
  Address found;
  waitUntil("a tray item of the process " + std::to_string(process), [&] {
    for (const QString& item : registeredItems(bus)) {
      const Address address = addressIn(item);
      const uint owner = bus.connection().interface()->servicePid(address.service);
      if (owner == static_cast<uint>(process)) {
        found = address;
      }
    }
    return !found.service.isEmpty();
  });
  return found;
}

}  // namespace

bool isTrayThere(PrivateBus& sessionBus) {
  return sessionBus.hasName(watcherName);
}

QStringList registeredItems(PrivateBus& sessionBus) {
  if (!isTrayThere(sessionBus)) {
    return {};
  }
  return property(sessionBus.connection(), {watcherName, "/StatusNotifierWatcher", watcherName,
                                            "RegisteredStatusNotifierItems"})
      .toStringList();
}

TrayItem::TrayItem(PrivateBus& sessionBus, pid_t process) : bus_(sessionBus.connection()) {
  const Address address = waitForItem(sessionBus, process);
  service_ = address.service;
  path_ = address.path;
}

std::string TrayItem::toolTip() const {
  const auto argument = qvariant_cast<QDBusArgument>(property("ToolTip"));
  QString icon;
  QString title;
  argument.beginStructure();
  argument >> icon;
  argument.beginArray();
  while (!argument.atEnd()) {
    argument.asVariant();
  }
  argument.endArray();
  argument >> title;
  return title.toStdString();
}

std::string TrayItem::title() const {
  return property("Title").toString().toStdString();
}

std::string TrayItem::iconName() const {
  return property("IconName").toString().toStdString();
}

std::unique_ptr<TrayMenu> TrayItem::menu() const {
  const auto path = qvariant_cast<QDBusObjectPath>(property("Menu"));
  return std::make_unique<TrayMenu>(bus_, service_, path.path());
}

QVariant TrayItem::property(const char* name) const {
  return test::property(bus_, {service_, path_, "org.kde.StatusNotifierItem", name});
}

}  // namespace zephlin::test
