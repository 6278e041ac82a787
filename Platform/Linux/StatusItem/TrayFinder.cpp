#include "Platform/Linux/StatusItem/TrayFinder.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QObject>
#include <chrono>
#include <utility>

namespace zephlin {

namespace {

/// How long a panel that has brought up its XEmbed tray may take for its StatusNotifier host. Much
/// more than it takes even while a session starts, and short enough for the user not to notice.
constexpr std::chrono::seconds timeout{3};

constexpr QLatin1String watcherName("org.kde.StatusNotifierWatcher");
constexpr QLatin1String watcherPath("/StatusNotifierWatcher");

}  // namespace

/// Reports a panel that shows StatusNotifier items. Main thread.
/// Protocol: freedesktop.org, StatusNotifierWatcher.
class StatusNotifierHost final : public QObject {
  Q_OBJECT

 public:
  /// `registered` is called from the event loop, whenever such a panel was found or has come.
  explicit StatusNotifierHost(std::function<void()> registered);

  /// Whether there can be one: there is a session bus.
  [[nodiscard]] bool isPossible() const { return bus_.isConnected(); }

 private Q_SLOTS:
  void hostRegistered() const { registered_(); }

 private:
  void askWatcher();

  std::function<void()> registered_;
  QDBusConnection bus_;
  QDBusServiceWatcher watcherService_;
};

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
  // There is no panel behind a watcher that the bus would start for us.
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

TrayFinder::TrayFinder(const XEmbedTray& xembed, std::function<void(TrayKind)> found)
    : xembed_(xembed),
      found_(std::move(found)),
      host_(std::make_unique<StatusNotifierHost>([this] { decide(TrayKind::StatusNotifier); })) {
  timeout_.setSingleShot(true);
  QObject::connect(&timeout_, &QTimer::timeout, &timeout_, [this] {
    if (xembed_.isThere()) {
      decide(TrayKind::XEmbed);
    }
  });
  if (xembed_.isThere()) {
    xembedTrayCame();
  }
}

TrayFinder::~TrayFinder() = default;

void TrayFinder::xembedTrayCame() {
  if (found_) {
    timeout_.start(host_->isPossible() ? timeout : std::chrono::seconds(0));
  }
}

void TrayFinder::decide(TrayKind kind) {
  timeout_.stop();
  if (const auto found = std::exchange(found_, nullptr)) {
    found(kind);
  }
}

}  // namespace zephlin

#include "TrayFinder.moc"
