#include "Platform/Linux/StatusItem/StatusNotifierMenu.h"

#include <QDBusError>
#include <QGuiApplication>
#include <algorithm>

namespace zephlin {

namespace {

/// To panels an underscore marks a mnemonic.
QString labelOf(const MenuItem& item) {
  return QString::fromStdString(item.title).replace(u'_', QLatin1String("__"));
}

/// The named ones; all of them if no name is given.
QVariantMap chosen(const QVariantMap& properties, const QStringList& names) {
  if (names.isEmpty()) {
    return properties;
  }
  QVariantMap result;
  for (const QString& name : names) {
    if (const auto found = properties.constFind(name); found != properties.cend()) {
      result.insert(name, *found);
    }
  }
  return result;
}

/// What of `now` differs from `before`, which has the same names.
QVariantMap changes(const QVariantMap& before, const QVariantMap& now) {
  QVariantMap result;
  for (auto property = now.cbegin(); property != now.cend(); ++property) {
    if (before.value(property.key()) != property.value()) {
      result.insert(property.key(), property.value());
    }
  }
  return result;
}

}  // namespace

QVariantMap StatusNotifierMenu::propertiesOf(const MenuItem& item) const {
  if (item.isSeparator) {
    return {{QStringLiteral("type"), QStringLiteral("separator")}};
  }
  QVariantMap properties{{QStringLiteral("label"), labelOf(item)},
                         {QStringLiteral("enabled"), menu_.isEnabled(item)}};
  if (item.isChecked.isSwitch()) {
    properties.insert(QStringLiteral("toggle-type"), QStringLiteral("checkmark"));
    properties.insert(QStringLiteral("toggle-state"), static_cast<bool>(item.isChecked) ? 1 : 0);
  }
  if (const QStringList shortcut = shortcutOf(item); !shortcut.isEmpty()) {
    properties.insert(QStringLiteral("shortcut"),
                      QVariant::fromValue(QList<QStringList>{shortcut}));
  }
  return properties;
}

void StatusNotifierMenu::show() {
  const auto& items = menu_.items();
  bool isOtherLayout = entries_.size() != items.size();
  QList<MenuEntryProperties> updated;
  entries_.resize(items.size());
  for (std::size_t index = 0; index < items.size(); ++index) {
    Entry& entry = entries_[index];
    entry.item = items[index];
    const QVariantMap before = std::exchange(entry.properties, propertiesOf(*entry.item));
    if (before.keys() != entry.properties.keys()) {
      entry.id = nextId_++;
      isOtherLayout = true;
    } else if (const QVariantMap changed = changes(before, entry.properties); !changed.isEmpty()) {
      updated.append({entry.id, changed});
    }
  }
  if (isOtherLayout) {
    Q_EMIT LayoutUpdated(++revision_, root_.id);
  }
  if (!updated.isEmpty()) {
    Q_EMIT ItemsPropertiesUpdated(updated, {});
  }
}

uint StatusNotifierMenu::GetLayout(int parentId, int recursionDepth,
                                   const QStringList& propertyNames, MenuLayout& layout) const {
  if (const Entry* const parent = findOrFail(parentId)) {
    layout = {parent->id, chosen(parent->properties, propertyNames), {}};
    if (parent == &root_ && recursionDepth != 0) {
      for (const Entry& entry : entries_) {
        layout.children.append(
            QVariant::fromValue(MenuLayout{entry.id, chosen(entry.properties, propertyNames), {}}));
      }
    }
  }
  return revision_;
}

QList<MenuEntryProperties> StatusNotifierMenu::GetGroupProperties(
    const QList<int>& ids, const QStringList& propertyNames) const {
  QList<MenuEntryProperties> result;
  const auto add = [&](const Entry& entry) {
    result.append({entry.id, chosen(entry.properties, propertyNames)});
  };
  for (const int id : ids) {
    if (const Entry* const entry = find(id)) {
      add(*entry);
    }
  }
  if (ids.isEmpty()) {
    std::for_each(entries_.begin(), entries_.end(), add);
  }
  return result;
}

QDBusVariant StatusNotifierMenu::GetProperty(int id, const QString& name) const {
  const Entry* const entry = findOrFail(id);
  if (entry && !entry->properties.contains(name)) {
    sendErrorReply(QDBusError::InvalidArgs, QLatin1String("the entry has no such property"));
    return {};
  }
  return entry ? QDBusVariant(entry->properties.value(name)) : QDBusVariant();
}

void StatusNotifierMenu::Event(int id, const QString& eventId, const QDBusVariant& /*data*/,
                               uint /*timestamp*/) {
  if (findOrFail(id)) {
    takeEvent(id, eventId);
  }
}

QList<int> StatusNotifierMenu::EventGroup(const QList<MenuEvent>& events) {
  QList<int> missing;
  for (const MenuEvent& event : events) {
    if (!takeEvent(event.id, event.name)) {
      missing.append(event.id);
    }
  }
  return missing;
}

bool StatusNotifierMenu::AboutToShow(int id) {
  const uint before = revision_;
  if (findOrFail(id) == &root_) {
    menu_.update();
  }
  return revision_ != before;
}

QList<int> StatusNotifierMenu::AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors) {
  QList<int> changed;
  for (const int id : ids) {
    if (!find(id)) {
      idErrors.append(id);
    } else if (AboutToShow(id)) {
      changed.append(id);
    }
  }
  return changed;
}

bool StatusNotifierMenu::takeEvent(int id, const QString& name) {
  const Entry* const entry = find(id);
  if (entry && entry->item && name == QLatin1String("clicked")) {
    menu_.choose(*entry->item);
  }
  return entry != nullptr;
}

const StatusNotifierMenu::Entry* StatusNotifierMenu::find(int id) const {
  if (id == root_.id) {
    return &root_;
  }
  const auto found = std::find_if(entries_.begin(), entries_.end(),
                                  [id](const Entry& entry) { return entry.id == id; });
  return found == entries_.end() ? nullptr : &*found;
}

const StatusNotifierMenu::Entry* StatusNotifierMenu::findOrFail(int id) const {
  const Entry* const entry = find(id);
  if (!entry) {
    sendErrorReply(QDBusError::InvalidArgs, QLatin1String("the menu has no such entry"));
  }
  return entry;
}

QString StatusNotifierMenu::textDirection() {
  return QGuiApplication::isRightToLeft() ? QStringLiteral("rtl") : QStringLiteral("ltr");
}

}  // namespace zephlin
