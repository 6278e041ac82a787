#include "Platform/Linux/StatusItem/StatusNotifierHost.h"

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

StatusNotifierHost::StatusNotifierHost(std::function<void()> registered)
    : registered_(std::move(registered)),
      bus_(QDBusConnection::sessionBus()),
      watcherService_(watcherName, bus_, QDBusServiceWatcher::WatchForRegistration) {
  if (!bus_.isConnected()) {
    return;
  }
  bus_.connect(watcherName, watcherPath, watcherName, QLatin1String("StatusNotifierHostRegistered"),
               this, SLOT(hostRegistered()));
  connect(&watcherService_, &QDBusServiceWatcher::serviceRegistered, this,
          [this] { askWatcher(); });
  askWatcher();
}

void StatusNotifierHost::askWatcher() {
  auto question = QDBusMessage::createMethodCall(watcherName, watcherPath,
                                                 QLatin1String("org.freedesktop.DBus.Properties"),
                                                 QLatin1String("Get"));
  question << QString(watcherName) << QLatin1String("IsStatusNotifierHostRegistered");
  // A watcher that the bus would start for us has no panel behind it.
  question.setAutoStartService(false);
  const auto* answer = new QDBusPendingCallWatcher(bus_.asyncCall(question), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* call) {
    const QDBusPendingReply<QDBusVariant> reply(*call);
    call->deleteLater();
    if (reply.isValid() && reply.value().variant().toBool()) {
      registered_();
    }
  });
}

}  // namespace zephlin
