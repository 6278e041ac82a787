#include "Platform/Linux/Session/DesktopNotification.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QGuiApplication>
#include <QObject>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>
#include <utility>

namespace zephlin {

namespace {

constexpr QLatin1String serverName("org.freedesktop.Notifications");
constexpr QLatin1String serverPath("/org/freedesktop/Notifications");
/// The name of the action that a click on the notification itself invokes.
constexpr QLatin1String clickAction("default");
constexpr int serversOwnTimeout = -1;
/// The bus may have to start the server first, and what it starts may hang.
constexpr int serverMilliseconds = 5000;
constexpr int pingMilliseconds = 500;

}  // namespace

/// Protocol: freedesktop.org, Desktop Notifications.
class NotificationServer final : public QObject {
  Q_OBJECT

 public:
  explicit NotificationServer(std::function<void(const QString& activationToken)> clicked)
      : clicked_(std::move(clicked)), bus_(QDBusConnection::sessionBus()) {}
  NotificationServer(const NotificationServer&) = delete;
  NotificationServer& operator=(const NotificationServer&) = delete;
  ~NotificationServer() override { withdraw(); }

  void show(const DesktopNotification::Content& content, std::function<void()> failed);
  void withdraw();

 private Q_SLOTS:
  void receiveToken(uint id, const QString& token);
  void receiveAction(uint id, const QString& action);
  void receiveEnd(uint id, uint reason);

 private:
  using Reply = std::function<void(const QDBusMessage& reply)>;
  void call(const char* method, const QVariantList& arguments, const Reply& finished);
  void listen();
  void notify(const DesktopNotification::Content& content, bool takesClicks,
              const std::function<void()>& failed);

  std::function<void(const QString& activationToken)> clicked_;
  QDBusConnection bus_;
  bool isListening_ = false;
  bool isWanted_ = false;
  /// Counts what was to be shown: only the last matters.
  int turn_ = 0;
  /// 0 if the server has not said that it shows one.
  uint id_ = 0;
  QString token_;
};

void NotificationServer::show(const DesktopNotification::Content& content,
                              std::function<void()> failed) {
  listen();
  isWanted_ = true;
  const int turn = ++turn_;
  // The first call also starts a server that the bus can start.
  call("GetCapabilities", {},
       [this, turn, content, failed = std::move(failed)](const QDBusMessage& reply) {
         if (turn != turn_ || !isWanted_) {
           return;
         }
         if (reply.type() != QDBusMessage::ReplyMessage) {
           failed();
           return;
         }
         const QStringList capabilities = reply.arguments().value(0).toStringList();
         notify(content, capabilities.contains(QLatin1String("actions")), failed);
       });
}

void NotificationServer::notify(const DesktopNotification::Content& content, bool takesClicks,
                                const std::function<void()>& failed) {
  const QStringList actions =
      takesClicks ? QStringList{clickAction, content.action} : QStringList();
  const QVariantMap hints{{"desktop-entry", QGuiApplication::desktopFileName()}};
  const int turn = turn_;
  call("Notify",
       {QGuiApplication::applicationDisplayName(), id_, QGuiApplication::desktopFileName(),
        content.summary, content.body, actions, hints, serversOwnTimeout},
       [this, turn, failed](const QDBusMessage& reply) {
         const bool isShown = reply.type() == QDBusMessage::ReplyMessage;
         if (isShown) {
           id_ = reply.arguments().value(0).toUInt();
         }
         if (!isWanted_) {
           withdraw();
         } else if (!isShown && turn == turn_) {
           failed();
         }
       });
}

void NotificationServer::withdraw() {
  isWanted_ = false;
  if (const uint shown = std::exchange(id_, 0); shown != 0) {
    call("CloseNotification", {shown}, [](const QDBusMessage& /*reply*/) {});
    // The bus answers in order: it has the message above when it answers this one.
    bus_.call(QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                             "org.freedesktop.DBus.Peer", "Ping"),
              QDBus::Block, pingMilliseconds);
  }
}

void NotificationServer::call(const char* method, const QVariantList& arguments,
                              const Reply& finished) {
  auto message =
      QDBusMessage::createMethodCall(serverName, serverPath, serverName, QLatin1String(method));
  message.setArguments(arguments);
  const auto* pending =
      new QDBusPendingCallWatcher(bus_.asyncCall(message, serverMilliseconds), this);
  connect(pending, &QDBusPendingCallWatcher::finished, this,
          [finished](QDBusPendingCallWatcher* call) {
            call->deleteLater();
            finished(call->reply());
          });
}

void NotificationServer::listen() {
  if (std::exchange(isListening_, true)) {
    return;
  }
  const auto connectTo = [this](const char* signal, const char* slot) {
    bus_.connect(serverName, serverPath, serverName, QLatin1String(signal), this, slot);
  };
  connectTo("ActivationToken", SLOT(receiveToken(uint, QString)));
  connectTo("ActionInvoked", SLOT(receiveAction(uint, QString)));
  connectTo("NotificationClosed", SLOT(receiveEnd(uint, uint)));
}

void NotificationServer::receiveToken(uint id, const QString& token) {
  if (id == id_) {
    token_ = token;
  }
}

void NotificationServer::receiveAction(uint id, const QString& action) {
  if (id == id_ && action == clickAction) {
    clicked_(std::exchange(token_, QString()));
  }
}

void NotificationServer::receiveEnd(uint id, uint /*reason*/) {
  if (id == id_) {
    id_ = 0;
    token_.clear();
  }
}

DesktopNotification::DesktopNotification(
    std::function<void(const QString& activationToken)> clicked)
    : server_(std::make_unique<NotificationServer>(std::move(clicked))) {}

DesktopNotification::~DesktopNotification() = default;

void DesktopNotification::show(const Content& content, std::function<void()> failed) {
  server_->show(content, std::move(failed));
}

void DesktopNotification::withdraw() {
  server_->withdraw();
}

}  // namespace zephlin

#include "DesktopNotification.moc"
