#pragma once

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QObject>
#include <QString>
#include <optional>

#include "Platform/Linux/StatusItem/StatusNotifierMenu.h"
#include "Platform/Linux/StatusItem/StatusNotifierTypes.h"
#include "Platform/Linux/StatusItem/StatusNotifierWatcher.h"
#include "Platform/Linux/StatusItem/TrayEntry.h"

namespace zephlin {

/// The status item as an object on the session bus, on a connection of its own, whose end removes
/// it from panels. It has no name there, although the protocol asks for one: when GNOME's
/// AppIndicator extension 46 sees the name appear, it forgets the properties it has just read, and
/// then fails to read them again. Main thread. Protocol: freedesktop.org, StatusNotifierItem.
///
/// A click shows the menu, which the panel draws. Panels find that out in two ways: waybar 0.9.17
/// and xfce4-panel 4.18 read ItemIsMenu; Plasma 5.27 and GNOME's AppIndicator extension 46 call
/// Activate all the same (GNOME at a double click), and show the menu if there is no such method.
/// There is therefore no Activate. There is no ContextMenu either: it would ask for a menu of the
/// program's own, which under Wayland is a window somewhere on the screen.
class StatusNotifierItem final : public QObject, public TrayEntry {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
  Q_PROPERTY(QString Category READ category CONSTANT)
  Q_PROPERTY(QString Id READ id CONSTANT)
  Q_PROPERTY(QString Title READ title CONSTANT)
  Q_PROPERTY(QString Status READ status CONSTANT)
  Q_PROPERTY(int WindowId READ windowId CONSTANT)
  Q_PROPERTY(QString IconThemePath READ iconThemePath CONSTANT)
  Q_PROPERTY(QString IconName READ shownIconName)
  Q_PROPERTY(QList<zephlin::StatusNotifierPicture> IconPixmap READ pictures)
  Q_PROPERTY(zephlin::StatusNotifierToolTip ToolTip READ shownToolTip)
  Q_PROPERTY(bool ItemIsMenu READ isMenu CONSTANT)
  Q_PROPERTY(QDBusObjectPath Menu READ menuPath CONSTANT)

 public:
  /// The menu outlives the item.
  explicit StatusNotifierItem(StatusMenu& menu);
  StatusNotifierItem(const StatusNotifierItem&) = delete;
  StatusNotifierItem& operator=(const StatusNotifierItem&) = delete;
  ~StatusNotifierItem() override;

  void setIconName(const std::optional<QString>& iconName) override;
  void setToolTip(const QString& text) override;
  void showMenu() override { menu_.show(); }
  void appear() override { StatusNotifierWatcher::registerItem(bus_); }

 public Q_SLOTS:
  /// Called before the panel reports a choice: the right to bring the next window to the front.
  void ProvideXdgActivationToken(const QString& token);
  /// Nothing: for panels that log an error otherwise.
  void SecondaryActivate(int /*x*/, int /*y*/) {}
  void Scroll(int /*delta*/, const QString& /*orientation*/) {}

 Q_SIGNALS:
  void NewIcon();
  void NewToolTip();

 private:
  [[nodiscard]] static QString category() { return QStringLiteral("ApplicationStatus"); }
  [[nodiscard]] static QString id();
  [[nodiscard]] static QString title();
  [[nodiscard]] static QString status() { return QStringLiteral("Active"); }
  [[nodiscard]] static int windowId() { return 0; }
  [[nodiscard]] static QString iconThemePath() { return {}; }
  [[nodiscard]] QString shownIconName() const;
  [[nodiscard]] QList<StatusNotifierPicture> pictures() const;
  [[nodiscard]] StatusNotifierToolTip shownToolTip() const;
  [[nodiscard]] static bool isMenu() { return true; }
  [[nodiscard]] static QDBusObjectPath menuPath();

  StatusNotifierMenu menu_;
  QDBusConnection bus_;
  std::optional<QString> iconName_;
  QString toolTip_;
};

}  // namespace zephlin
