#pragma once

#include <QByteArray>
#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <tuple>

namespace zephlin {

/// A picture: four bytes for each pixel, of opacity, red, green and blue.
struct StatusNotifierPicture {
  int width = 0;
  int height = 0;
  QByteArray pixels;

  static auto members(auto& self) { return std::tie(self.width, self.height, self.pixels); }
};

struct StatusNotifierToolTip {
  QString iconName;
  QList<StatusNotifierPicture> icon;
  QString title;
  QString text;

  static auto members(auto& self) {
    return std::tie(self.iconName, self.icon, self.title, self.text);
  }
};

/// An entry of a menu with the entries below it, which are of this type too.
struct MenuLayout {
  int id = 0;
  QVariantMap properties;
  QVariantList children;

  static auto members(auto& self) { return std::tie(self.id, self.properties, self.children); }
};

struct MenuEntryProperties {
  int id = 0;
  QVariantMap properties;

  static auto members(auto& self) { return std::tie(self.id, self.properties); }
};

struct MenuEntryPropertyNames {
  int id = 0;
  QStringList names;

  static auto members(auto& self) { return std::tie(self.id, self.names); }
};

struct MenuEvent {
  int id = 0;
  QString name;
  QDBusVariant data;
  uint timestamp = 0;

  static auto members(auto& self) {
    return std::tie(self.id, self.name, self.data, self.timestamp);
  }
};

template <class T>
concept DBusStructure = requires(T& value) {
  T::members(value);
};

template <DBusStructure T>
QDBusArgument& operator<<(QDBusArgument& argument, const T& value) {
  argument.beginStructure();
  std::apply([&argument](const auto&... members) { (argument << ... << members); },
             T::members(value));
  argument.endStructure();
  return argument;
}

template <DBusStructure T>
const QDBusArgument& operator>>(const QDBusArgument& argument, T& value) {
  argument.beginStructure();
  std::apply([&argument](auto&... members) { (argument >> ... >> members); }, T::members(value));
  argument.endStructure();
  return argument;
}

/// To be called before an object that uses these types is put on a bus. Main thread.
inline void registerStatusNotifierTypes() {
  qDBusRegisterMetaType<StatusNotifierPicture>();
  qDBusRegisterMetaType<QList<StatusNotifierPicture>>();
  qDBusRegisterMetaType<StatusNotifierToolTip>();
  qDBusRegisterMetaType<MenuLayout>();
  qDBusRegisterMetaType<MenuEntryProperties>();
  qDBusRegisterMetaType<QList<MenuEntryProperties>>();
  qDBusRegisterMetaType<MenuEntryPropertyNames>();
  qDBusRegisterMetaType<QList<MenuEntryPropertyNames>>();
  qDBusRegisterMetaType<MenuEvent>();
  qDBusRegisterMetaType<QList<MenuEvent>>();
  qDBusRegisterMetaType<QList<QStringList>>();
}

}  // namespace zephlin
