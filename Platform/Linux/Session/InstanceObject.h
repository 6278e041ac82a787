#pragma once

#include <QObject>
#include <QStringList>
#include <QTimer>
#include <QVariantList>
#include <QVariantMap>
#include <functional>
#include <utility>

namespace zephlin {

/// How a running application is reached on the session bus.
constexpr const char* instanceBusName = "com.quorvenel.zephlin";
constexpr const char* instanceBusPath = "/com/quorvenel/zephlin";
constexpr const char* instanceBusInterface = "org.freedesktop.Application";

/// What the running instance answers to. Opening files and actions means no more than coming
/// forward: there are none.
class InstanceObject final : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

 public:
  explicit InstanceObject(std::function<void()> onActivate) : onActivate_(std::move(onActivate)) {}

 public Q_SLOTS:
  /// Answers at once: coming forward may take as long as an alert is open.
  void Activate(const QVariantMap& /*platformData*/) { QTimer::singleShot(0, this, onActivate_); }
  void Open(const QStringList& /*addresses*/, const QVariantMap& /*platformData*/) {
    QTimer::singleShot(0, this, onActivate_);
  }
  void ActivateAction(const QString& /*action*/, const QVariantList& /*parameters*/,
                      const QVariantMap& /*platformData*/) {}

 private:
  std::function<void()> onActivate_;
};

}  // namespace zephlin
