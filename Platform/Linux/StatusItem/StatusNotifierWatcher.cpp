#include "Platform/Linux/StatusItem/StatusNotifierWatcher.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <utility>

namespace zephlin {

namespace {

constexpr QLatin1String watcherName("org.kde.StatusNotifierWatcher");
constexpr QLatin1String watcherPath("/StatusNotifierWatcher");

}  // namespace

StatusNotifierWatcher::StatusNotifierWatcher(std::function<void()> hostsChanged)
    : hostsChanged_(std::move(hostsChanged)),
      bus_(QDBusConnection::sessionBus()),
      service_(watcherName, bus_, QDBusServiceWatcher::WatchForOwnerChange) {
  if (!bus_.isConnected()) {
    return;
  }
  bus_.connect(watcherName, watcherPath, watcherName, QLatin1String("StatusNotifierHostRegistered"),
               this, SLOT(hostRegistered()));
  connect(&service_, &QDBusServiceWatcher::serviceOwnerChanged, this, [this] {
    setHasHost(false);
    ask();
  });
  ask();
}

void StatusNotifierWatcher::registerItem(const QDBusConnection& item) {
  auto message = QDBusMessage::createMethodCall(watcherName, watcherPath, watcherName,
                                                QLatin1String("RegisterStatusNotifierItem"));
  message << item.baseService();
  message.setAutoStartService(false);
  item.asyncCall(message);
}

void StatusNotifierWatcher::ask() {
  auto question = QDBusMessage::createMethodCall(watcherName, watcherPath,
                                                 QLatin1String("org.freedesktop.DBus.Properties"),
                                                 QLatin1String("Get"));
  question << QString(watcherName) << QLatin1String("IsStatusNotifierHostRegistered");
  // There is no panel behind a watcher that the bus would start for us.
  question.setAutoStartService(false);
  const auto* answer = new QDBusPendingCallWatcher(bus_.asyncCall(question), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* call) {
    const QDBusPendingReply<QDBusVariant> reply(*call);
    call->deleteLater();
    if (reply.isValid() && reply.value().variant().toBool()) {
      setHasHost(true);
    }
  });
}

void StatusNotifierWatcher::setHasHost(bool hasHost) {
  if (std::exchange(hasHost_, hasHost) != hasHost) {
    hostsChanged_();
  }
}

}  // namespace zephlin
