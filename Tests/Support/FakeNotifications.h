#pragma once

#include <QDBusConnection>
#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <stdexcept>

#include "Tests/Support/BusConnection.h"

namespace zephlin::test {

struct ShownNotification {
  QString application;
  QString icon;
  QString summary;
  QString body;
  QStringList actions;
  QVariantMap hints;
};

/// The desktop's notifications, as this thread's event loop answers for them, from construction to
/// destruction.
class FakeNotifications final : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

 public:
  explicit FakeNotifications(const QString& busAddress = sessionBusAddress(),
                             QStringList capabilities = {"body", "actions"})
      : bus_(busAddress), capabilities_(std::move(capabilities)) {
    if (!bus_.get().registerObject(
            "/org/freedesktop/Notifications", this,
            QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals) ||
        !bus_.get().registerService("org.freedesktop.Notifications")) {
      throw std::runtime_error("the bus has given the name to someone else");
    }
  }

  /// What the user sees, by its identifier.
  [[nodiscard]] const QMap<uint, ShownNotification>& shown() const { return shown_; }
  /// How often something was shown, in place of another or not.
  [[nodiscard]] int timesShown() const { return timesShown_; }

  /// The user clicks on the one that is shown, and the desktop takes it away.
  void click(const QString& activationToken) {
    const uint id = shown_.firstKey();
    Q_EMIT ActivationToken(id, activationToken);
    Q_EMIT ActionInvoked(id, "default");
    dismiss();
  }
  void dismiss() {
    constexpr uint byTheUser = 2;
    const uint id = shown_.firstKey();
    shown_.remove(id);
    Q_EMIT NotificationClosed(id, byTheUser);
  }

 public Q_SLOTS:
  QStringList GetCapabilities() const { return capabilities_; }

  uint Notify(const QString& application, uint replaced, const QString& icon,
              const QString& summary, const QString& body, const QStringList& actions,
              const QVariantMap& hints, int /*timeout*/) {
    ++timesShown_;
    const uint id = shown_.contains(replaced) ? replaced : ++lastId_;
    shown_.insert(id, {application, icon, summary, body, actions, hints});
    return id;
  }

  void CloseNotification(uint id) {
    constexpr uint byACall = 3;
    shown_.remove(id);
    Q_EMIT NotificationClosed(id, byACall);
  }

 Q_SIGNALS:
  void NotificationClosed(uint id, uint reason);
  void ActionInvoked(uint id, const QString& action);
  void ActivationToken(uint id, const QString& token);

 private:
  BusConnection bus_;
  QStringList capabilities_;
  QMap<uint, ShownNotification> shown_;
  uint lastId_ = 0;
  int timesShown_ = 0;
};

}  // namespace zephlin::test
