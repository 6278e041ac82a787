#include "Tests/Unit/Linux/StatusItem/ShownItem.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <algorithm>
#include <stdexcept>

#include "Tests/Unit/Linux/StatusItem/PrivateDesktop.h"

namespace zephlin::test {

namespace {

constexpr const char* itemPath = "/StatusNotifierItem";
constexpr const char* itemInterface = "org.kde.StatusNotifierItem";
constexpr const char* menuPath = "/MenuBar";
constexpr const char* menuInterface = "com.canonical.dbusmenu";
constexpr const char* observer = "observer";

ShownEntry entryFrom(const QDBusArgument& argument) {
  ShownEntry entry;
  argument.beginStructure();
  argument >> entry.id >> entry.properties;
  argument.endStructure();
  return entry;
}

/// What Event is told of a click.
QVariantList choiceOf(const ShownEntry& entry) {
  return {entry.id, "clicked", QVariant::fromValue(QDBusVariant("")), 0U};
}

}  // namespace

ShownItem::ShownItem(const QString& service)
    : bus_(QDBusConnection::connectToBus(QDBusConnection::SessionBus, observer)),
      service_(service) {
  for (const char* name : {"NewIcon", "NewToolTip", "NewTitle", "NewMenu", "NewStatus"}) {
    bus_.connect(service_, itemPath, itemInterface, name, this, SLOT(record(QDBusMessage)));
  }
  for (const char* name : {"ItemsPropertiesUpdated", "LayoutUpdated"}) {
    bus_.connect(service_, menuPath, menuInterface, name, this, SLOT(record(QDBusMessage)));
  }
}

ShownItem::~ShownItem() {
  QDBusConnection::disconnectFromBus(observer);
}

QVariant ShownItem::property(const char* name) {
  const QDBusMessage reply =
      call(itemPath, "org.freedesktop.DBus.Properties", "Get", {itemInterface, name});
  return reply.arguments().constFirst().value<QDBusVariant>().variant();
}

std::string ShownItem::toolTip() {
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

std::vector<ShownPicture> ShownItem::pictures() {
  const auto argument = property("IconPixmap").value<QDBusArgument>();
  std::vector<ShownPicture> pictures;
  argument.beginArray();
  while (!argument.atEnd()) {
    ShownPicture& picture = pictures.emplace_back();
    argument.beginStructure();
    argument >> picture.width >> picture.height >> picture.pixels;
    argument.endStructure();
  }
  argument.endArray();
  return pictures;
}

std::vector<int> ShownItem::pictureWidths() {
  std::vector<int> widths;
  for (const ShownPicture& picture : pictures()) {
    widths.push_back(picture.width);
  }
  return widths;
}

std::vector<ShownEntry> ShownItem::layout() {
  const QDBusMessage reply = call(menuPath, menuInterface, "GetLayout", {0, -1, QStringList()});
  const auto root = reply.arguments().at(1).value<QDBusArgument>();
  std::vector<ShownEntry> entries;
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

void ShownItem::tellAboutToShow() {
  call(menuPath, menuInterface, "AboutToShow", {0});
}

void ShownItem::choose(const ShownEntry& entry) {
  call(menuPath, menuInterface, "Event", choiceOf(entry));
}

void ShownItem::chooseAtOnce(const ShownEntry& entry, int times) {
  QDBusMessage message = QDBusMessage::createMethodCall(service_, menuPath, menuInterface, "Event");
  message.setArguments(choiceOf(entry));
  for (int time = 0; time < times; ++time) {
    bus_.send(message);
  }
}

int ShownItem::signalsSent(const char* name) const {
  return static_cast<int>(std::count_if(sent_.begin(), sent_.end(), [name](const auto& message) {
    return message.member() == QLatin1String(name);
  }));
}

QDBusMessage ShownItem::call(const char* path, const char* interface, const char* method,
                             const QVariantList& arguments) {
  QDBusMessage message = QDBusMessage::createMethodCall(service_, path, interface, method);
  message.setArguments(arguments);
  const QDBusPendingCall pending = bus_.asyncCall(message);
  if (!waitUntil([&pending] { return pending.isFinished(); }) || pending.isError()) {
    throw std::runtime_error(pending.error().message().toStdString());
  }
  return pending.reply();
}

bool isOnBus(const QString& service) {
  return QDBusConnection::sessionBus().interface()->isServiceRegistered(service);
}

}  // namespace zephlin::test
