#pragma once

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QObject>
#include <QVariant>
#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include "Tests/Support/BusConnection.h"

namespace zephlin::test {

constexpr const char* itemInterface = "org.kde.StatusNotifierItem";
constexpr const char* menuInterface = "com.canonical.dbusmenu";

inline QVariantList eventArguments(int id, const char* event) {
  return {id, event, QVariant::fromValue(QDBusVariant("")), 0U};
}

/// An entry of a menu as a panel reads it (com.canonical.dbusmenu).
struct MenuEntry {
  int id = 0;
  QVariantMap properties;

  [[nodiscard]] std::string label() const {
    return properties.value("label").toString().toStdString();
  }

  [[nodiscard]] bool isSeparator() const { return properties.value("type") == "separator"; }
  [[nodiscard]] bool isEnabled() const { return properties.value("enabled", true).toBool(); }
  [[nodiscard]] bool isVisible() const { return properties.value("visible", true).toBool(); }
  /// Whether there is room for a check mark.
  [[nodiscard]] bool isCheckable() const { return properties.value("toggle-type") == "checkmark"; }
  [[nodiscard]] bool isChecked() const { return properties.value("toggle-state") == 1; }
  /// As "Control+Q"; empty without one.
  [[nodiscard]] std::string shortcut() const {
    // A list of shortcuts, each a list of keys.
    const auto shortcuts = qdbus_cast<QList<QStringList>>(properties.value("shortcut"));
    return shortcuts.value(0).join('+').toStdString();
  }
};

inline MenuEntry entryFrom(const QDBusArgument& argument) {
  MenuEntry entry;
  argument.beginStructure();
  argument >> entry.id >> entry.properties;
  argument.endStructure();
  return entry;
}

/// A picture as an item sends it: four bytes for each pixel, the first of them its opacity.
struct TrayPicture {
  int width = 0;
  int height = 0;
  QByteArray pixels;
};

/// A status notifier item and its menu as a panel sees and uses them, over a connection of its own.
class TrayItem final : public QObject {
  Q_OBJECT

 public:
  explicit TrayItem(const QString& service, const QString& path = "/StatusNotifierItem",
                    const QString& busAddress = sessionBusAddress())
      : bus_(busAddress), service_(service), path_(path) {
    for (const char* name : {"NewIcon", "NewToolTip", "NewTitle", "NewMenu", "NewStatus"}) {
      bus_.get().connect(service_, path_, itemInterface, name, this, SLOT(record(QDBusMessage)));
    }
    for (const char* name : {"ItemsPropertiesUpdated", "LayoutUpdated"}) {
      bus_.get().connect(service_, {}, menuInterface, name, this, SLOT(record(QDBusMessage)));
    }
  }

  [[nodiscard]] const QString& service() const { return service_; }

  [[nodiscard]] QVariant property(const char* name) const {
    return bus_.property({service_, path_, itemInterface, name});
  }

  [[nodiscard]] std::string text(const char* name) const {
    return property(name).toString().toStdString();
  }

  /// The lines of the text that a panel shows over the item.
  [[nodiscard]] std::string toolTip() const {
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

  /// The pictures that the item sends, and how wide they are.
  [[nodiscard]] std::vector<TrayPicture> pictures() const {
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

  [[nodiscard]] std::vector<int> pictureWidths() const {
    std::vector<int> widths;
    for (const TrayPicture& picture : pictures()) {
      widths.push_back(picture.width);
    }
    return widths;
  }

  std::vector<MenuEntry> entries() const {
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

  /// Throws std::runtime_error if there is none with this label.
  [[nodiscard]] MenuEntry entry(const std::string& label) const {
    for (const MenuEntry& each : entries()) {
      if (each.label() == label) {
        return each;
      }
    }
    throw std::runtime_error("the menu has no entry " + label);
  }

  [[nodiscard]] std::string statusLine() const { return entries().at(1).label(); }

  /// What panels announce before they show the menu, while they do and afterwards.
  void aboutToShow() const { bus_.call(menuMethod("AboutToShow"), {0}); }

  void opened() const { send(0, "opened"); }
  void closed() const { send(0, "closed"); }
  void click(int id) const { send(id, "clicked"); }
  /// So many times in a row, without waiting for a reply.
  void clickAtOnce(int id, int times = 1) const {
    for (int time = 0; time < times; ++time) {
      bus_.send(menuMethod("Event"), eventArguments(id, "clicked"));
    }
  }

  /// Opens the menu and chooses the entry, which closes the menu.
  void choose(const std::string& label) const {
    aboutToShow();
    opened();
    const int id = entry(label).id;
    closed();
    click(id);
  }

  /// The signals that the item and its menu have sent so far.
  [[nodiscard]] const std::vector<QDBusMessage>& sent() const { return sent_; }
  /// How many of them have this name.
  [[nodiscard]] int signalsSent(const char* name) const {
    return static_cast<int>(std::count_if(sent_.begin(), sent_.end(), [name](const auto& message) {
      return message.member() == QLatin1String(name);
    }));
  }

 private Q_SLOTS:
  void record(const QDBusMessage& message) { sent_.push_back(message); }

 private:
  [[nodiscard]] Method menuMethod(const char* name) const {
    if (menuPath_.isEmpty()) {
      menuPath_ = qvariant_cast<QDBusObjectPath>(property("Menu")).path();
    }
    return {service_, menuPath_, menuInterface, name};
  }

  void send(int id, const char* event) const {
    bus_.call(menuMethod("Event"), eventArguments(id, event));
  }

  BusConnection bus_;
  QString service_;
  QString path_;
  mutable QString menuPath_;
  std::vector<QDBusMessage> sent_;
};

}  // namespace zephlin::test
