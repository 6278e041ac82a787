#include "Tests/Support/TrayItem.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <algorithm>
#include <stdexcept>

namespace zephlin::test {

namespace {

constexpr const char* itemInterface = "org.kde.StatusNotifierItem";
constexpr const char* menuInterface = "com.canonical.dbusmenu";

MenuEntry entryFrom(const QDBusArgument& argument) {
  MenuEntry entry;
  argument.beginStructure();
  argument >> entry.id >> entry.properties;
  argument.endStructure();
  return entry;
}

QVariantList eventArguments(int id, const char* event) {
  return {id, event, QVariant::fromValue(QDBusVariant("")), 0U};
}

}  // namespace

std::string MenuEntry::label() const {
  return properties.value("label").toString().toStdString();
}

std::string MenuEntry::shortcut() const {
  // A list of shortcuts, each a list of keys.
  const auto shortcuts = qdbus_cast<QList<QStringList>>(properties.value("shortcut"));
  return shortcuts.value(0).join('+').toStdString();
}

TrayItem::TrayItem(const QString& service, const QString& path, const QString& busAddress)
    : bus_(busAddress), service_(service), path_(path) {
  for (const char* name : {"NewIcon", "NewToolTip", "NewTitle", "NewMenu", "NewStatus"}) {
    bus_.get().connect(service_, path_, itemInterface, name, this, SLOT(record(QDBusMessage)));
  }
  for (const char* name : {"ItemsPropertiesUpdated", "LayoutUpdated"}) {
    bus_.get().connect(service_, {}, menuInterface, name, this, SLOT(record(QDBusMessage)));
  }
}

QVariant TrayItem::property(const char* name) const {
  return bus_.property({service_, path_, itemInterface, name});
}

std::string TrayItem::text(const char* name) const {
  return property(name).toString().toStdString();
}

std::string TrayItem::toolTip() const {
  const auto argument = property("ToolTip").value<QDBusArgument>();
  QString iconName;
  QString title;
  QString subtitle;
  argument.beginStructure();
  argument >> iconName;
  argument.beginArray();
  while (!argument.atEnd()) {
    argument.asVariant();
  }
  argument.endArray();
  argument >> title >> subtitle;
  argument.endStructure();
  return (title + subtitle).toStdString();
}

std::vector<TrayPicture> TrayItem::pictures() const {
  const auto argument = property("IconPixmap").value<QDBusArgument>();
  std::vector<TrayPicture> pictures;
  argument.beginArray();
  while (!argument.atEnd()) {
    TrayPicture& picture = pictures.emplace_back();
    argument.beginStructure();
    argument >> picture.width >> picture.height >> picture.pixels;
    argument.endStructure();
  }
  argument.endArray();
  return pictures;
}

std::vector<int> TrayItem::pictureWidths() const {
  std::vector<int> widths;
  for (const TrayPicture& picture : pictures()) {
    widths.push_back(picture.width);
  }
  return widths;
}

std::vector<MenuEntry> TrayItem::entries() const {
  constexpr int everyLevel = -1;
  const QVariantList reply = bus_.call(menuMethod("GetLayout"), {0, everyLevel, QStringList()});
  const auto root = reply.at(1).value<QDBusArgument>();
  std::vector<MenuEntry> entries;
  int id = 0;
  QVariantMap properties;
  root.beginStructure();
  root >> id >> properties;
  root.beginArray();
  while (!root.atEnd()) {
    QDBusVariant child;
    root >> child;
    entries.push_back(entryFrom(child.variant().value<QDBusArgument>()));
  }
  root.endArray();
  root.endStructure();
  return entries;
}

MenuEntry TrayItem::entry(const std::string& label) const {
  for (const MenuEntry& each : entries()) {
    if (each.label() == label) {
      return each;
    }
  }
  throw std::runtime_error("the menu has no entry " + label);
}

void TrayItem::aboutToShow() const {
  bus_.call(menuMethod("AboutToShow"), {0});
}

void TrayItem::clickAtOnce(int id, int times) const {
  for (int time = 0; time < times; ++time) {
    bus_.send(menuMethod("Event"), eventArguments(id, "clicked"));
  }
}

void TrayItem::choose(const std::string& label) const {
  aboutToShow();
  opened();
  const int id = entry(label).id;
  closed();
  click(id);
}

int TrayItem::signalsSent(const char* name) const {
  return static_cast<int>(std::count_if(sent_.begin(), sent_.end(), [name](const auto& message) {
    return message.member() == QLatin1String(name);
  }));
}

Method TrayItem::menuMethod(const char* name) const {
  if (menuPath_.isEmpty()) {
    menuPath_ = qvariant_cast<QDBusObjectPath>(property("Menu")).path();
  }
  return {service_, menuPath_, menuInterface, name};
}

void TrayItem::send(int id, const char* event) const {
  bus_.call(menuMethod("Event"), eventArguments(id, event));
}

}  // namespace zephlin::test
