#pragma once

#include <QDBusContext>
#include <QDBusVariant>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <memory>
#include <vector>

#include "Platform/Linux/StatusItem/StatusMenu.h"
#include "Platform/Linux/StatusItem/StatusNotifierTypes.h"

namespace zephlin {

/// A StatusMenu as an object on a bus, for panels that draw it themselves. It is complete at all
/// times, since a panel may read it before it announces that it opens it.
///
/// An entry that stays in its place keeps its identifier, so that a panel that shows the menu is
/// sent single properties, and a choice that is under way finds its entry. It gets a new one if it
/// gains or loses a property: panels do not notice that (Plasma 5.27, for check marks).
///
/// Callers get an error for an entry that is not there, and for arguments of the wrong type. Main
/// thread. Protocol: com.canonical.dbusmenu, version 3.
class StatusNotifierMenu final : public QObject, protected QDBusContext {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
  Q_PROPERTY(uint Version READ version CONSTANT)
  Q_PROPERTY(QString TextDirection READ textDirection CONSTANT)
  Q_PROPERTY(QString Status READ status CONSTANT)
  Q_PROPERTY(QStringList IconThemePath READ iconThemePath CONSTANT)

 public:
  /// The StatusMenu outlives the object.
  explicit StatusNotifierMenu(StatusMenu& menu) : menu_(menu) { show(); }

  /// Shows the entries that the StatusMenu has now.
  void show();

 public Q_SLOTS:
  uint GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames,
                 zephlin::MenuLayout& layout) const;
  QList<zephlin::MenuEntryProperties> GetGroupProperties(const QList<int>& ids,
                                                         const QStringList& propertyNames) const;
  QDBusVariant GetProperty(int id, const QString& name) const;
  void Event(int id, const QString& eventId, const QDBusVariant& data, uint timestamp);
  /// Returns the identifiers that are not there.
  QList<int> EventGroup(const QList<zephlin::MenuEvent>& events);
  /// Returns whether the layout has changed.
  bool AboutToShow(int id);
  QList<int> AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors);

 Q_SIGNALS:
  void ItemsPropertiesUpdated(const QList<zephlin::MenuEntryProperties>& updatedProps,
                              const QList<zephlin::MenuEntryPropertyNames>& removedProps);
  void LayoutUpdated(uint revision, int parent);

 private:
  struct Entry {
    int id = 0;
    QVariantMap properties;
    std::shared_ptr<MenuItem> item;
  };

  [[nodiscard]] static uint version() { return 3; }
  [[nodiscard]] static QString textDirection();
  [[nodiscard]] static QString status() { return QStringLiteral("normal"); }
  [[nodiscard]] static QStringList iconThemePath() { return {}; }

  [[nodiscard]] QVariantMap propertiesOf(const MenuItem& item) const;
  /// Null if there is no such entry.
  [[nodiscard]] const Entry* find(int id) const;
  /// As find, which failing the caller is sent an error.
  [[nodiscard]] const Entry* findOrFail(int id) const;
  /// Whether there is such an entry.
  bool takeEvent(int id, const QString& name);

  StatusMenu& menu_;
  Entry root_{0, {{QStringLiteral("children-display"), QStringLiteral("submenu")}}, nullptr};
  std::vector<Entry> entries_;
  int nextId_ = 1;
  uint revision_ = 1;
};

}  // namespace zephlin
