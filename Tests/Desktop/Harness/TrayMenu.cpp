#include "Tests/Desktop/Harness/TrayMenu.h"

#include <QDBusArgument>
#include <QDBusVariant>
#include <QStringList>
#include <stdexcept>
#include <utility>

#include "Tests/Desktop/Harness/PrivateBus.h"

namespace zephlin::test {
namespace {

const QString menuInterface = "com.canonical.dbusmenu";
constexpr int wholeMenu = 0;

struct LayoutNode {
  int id = 0;
  QVariantMap properties;
  std::vector<LayoutNode> children;
};

/// (ia{sv}av), where each variant holds the same again.
LayoutNode readNode(const QDBusArgument& argument) {
  LayoutNode node;
  argument.beginStructure();
  argument >> node.id >> node.properties;
  argument.beginArray();
  while (!argument.atEnd()) {
    QDBusVariant child;
    argument >> child;
    node.children.push_back(readNode(qvariant_cast<QDBusArgument>(child.variant())));
  }
  argument.endArray();
  argument.endStructure();
  return node;
}

/// A list of shortcuts, each a list of keys.
std::string shortcutIn(const QVariantMap& properties) {
  if (!properties.contains("shortcut")) {
    return {};
  }
  const auto keys = qdbus_cast<QList<QStringList>>(properties.value("shortcut"));
  return keys.isEmpty() ? "" : keys.first().join('+').toStdString();
}

MenuEntry entryFrom(const LayoutNode& node) {
  const QVariantMap& properties = node.properties;
  MenuEntry entry;
  entry.id = node.id;
  entry.label = properties.value("label").toString().toStdString();
  entry.isSeparator = properties.value("type") == "separator";
  entry.isEnabled = properties.value("enabled", true).toBool();
  entry.isVisible = properties.value("visible", true).toBool();
  entry.hasCheckMark = properties.value("toggle-type") == "checkmark";
  entry.isChecked = properties.value("toggle-state") == 1;
  entry.shortcut = shortcutIn(properties);
  return entry;
}

QVariantList eventArguments(int id, const char* event) {
  return {id, event, QVariant::fromValue(QDBusVariant("")), 0U};
}

}  // namespace

TrayMenu::TrayMenu(const QDBusConnection& bus, QString service, QString path)
    : bus_(bus), service_(std::move(service)), path_(std::move(path)) {
  for (const char* signal : {"LayoutUpdated", "ItemsPropertiesUpdated"}) {
    bus_.connect(service_, path_, menuInterface, signal, this, SLOT(countChange()));
  }
}

void TrayMenu::aboutToShow() const {
  call("AboutToShow", {wholeMenu});
}

void TrayMenu::opened() const {
  send(wholeMenu, "opened");
}

void TrayMenu::closed() const {
  send(wholeMenu, "closed");
}

std::vector<MenuEntry> TrayMenu::entries() const {
  constexpr int everyLevel = -1;
  const QVariantList reply = call("GetLayout", {wholeMenu, everyLevel, QStringList()});
  const LayoutNode root = readNode(qvariant_cast<QDBusArgument>(reply.at(1)));
  std::vector<MenuEntry> result;
  for (const LayoutNode& child : root.children) {
    result.push_back(entryFrom(child));
  }
  return result;
}

MenuEntry TrayMenu::entry(const std::string& label) const {
  for (const MenuEntry& each : entries()) {
    if (each.label == label) {
      return each;
    }
  }
  throw std::runtime_error("the menu has no entry " + label);
}

std::string TrayMenu::statusLine() const {
  return entries().at(1).label;
}

void TrayMenu::choose(const std::string& label) const {
  aboutToShow();
  opened();
  const int id = entry(label).id;
  closed();
  click(id);
}

void TrayMenu::click(int id) const {
  send(id, "clicked");
}

QVariantList TrayMenu::call(const char* method, const QVariantList& arguments) const {
  return test::call(bus_, {service_, path_, menuInterface, method}, arguments);
}

void TrayMenu::clickAtOnce(int id) const {
  QDBusMessage message = QDBusMessage::createMethodCall(service_, path_, menuInterface, "Event");
  message.setArguments(eventArguments(id, "clicked"));
  bus_.send(message);
}

void TrayMenu::send(int id, const char* event) const {
  call("Event", eventArguments(id, event));
}

}  // namespace zephlin::test
