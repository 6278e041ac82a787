#include "Platform/Linux/Session/InstanceMessage.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QVariantMap>

#include "Platform/Linux/Session/InstanceObject.h"

namespace zephlin {

namespace {

constexpr int replyMilliseconds = 5000;

}  // namespace

InstanceReply askToComeForward(pid_t instance) {
  const QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) {
    return InstanceReply::Unreachable;
  }
  // A process that is about to end may still own the name; the lock has told who the instance is.
  const QDBusReply<uint> owner = bus.interface()->servicePid(instanceBusName);
  if (!owner.isValid() || static_cast<pid_t>(owner.value()) != instance) {
    return InstanceReply::NotThereYet;
  }
  auto message = QDBusMessage::createMethodCall(instanceBusName, instanceBusPath,
                                                instanceBusInterface, "Activate");
  message.setAutoStartService(false);
  message << QVariantMap();
  const QDBusMessage reply = bus.call(message, QDBus::Block, replyMilliseconds);
  return reply.type() == QDBusMessage::ReplyMessage ? InstanceReply::Answered
                                                    : InstanceReply::Unreachable;
}

}  // namespace zephlin
