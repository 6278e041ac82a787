#pragma once

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QObject>
#include <QString>
#include <string>
#include <vector>

#include "Tests/Support/BusConnection.h"

namespace zephlin::test {

/// What a screen reader speaks by itself: the name of each notification (AT-SPI's role) that comes
/// to be shown.
class AnnouncementListener final : public QObject {
  Q_OBJECT

 public:
  explicit AnnouncementListener(const QString& accessibilityBusAddress)
      : bus_(accessibilityBusAddress) {
    bus_.get().connect(QString(), QString(), "org.a11y.atspi.Event.Object", "StateChanged", this,
                       SLOT(stateChanged(QDBusMessage)));
    bus_.call({"org.a11y.atspi.Registry", "/org/a11y/atspi/registry", "org.a11y.atspi.Registry",
               "RegisterEvent"},
              {"object:state-changed:showing"});
  }

  [[nodiscard]] const std::vector<std::string>& announced() const { return announced_; }

 private Q_SLOTS:
  void stateChanged(const QDBusMessage& signal) {
    const bool isShown =
        signal.arguments().value(0) == "showing" && signal.arguments().value(1) == 1;
    if (isShown && accessible(signal, "GetRoleName").at(0) == "notification") {
      announced_.push_back(
          bus_.property({signal.service(), signal.path(), "org.a11y.atspi.Accessible", "Name"})
              .toString()
              .toStdString());
    }
  }

 private:
  QVariantList accessible(const QDBusMessage& signal, const char* method) const {
    return bus_.call({signal.service(), signal.path(), "org.a11y.atspi.Accessible", method});
  }

  BusConnection bus_;
  std::vector<std::string> announced_;
};

}  // namespace zephlin::test
