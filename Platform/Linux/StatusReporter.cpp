#include "Platform/Linux/StatusReporter.h"

#include <QGuiApplication>
#include <utility>

#include "Platform/Linux/Windows/ActivationToken.h"
#include "Platform/Linux/Windows/QtWindowServer.h"

namespace zephlin {

namespace {

constexpr const char* advice =
    "This desktop has no tray for its icon. Start Zephlin again to open the tap test. To switch "
    "it on or off, right-click its launcher.";

}  // namespace

StatusReporter::StatusReporter(LinuxApplication& application, AlertPresenter& alerts)
    : application_(application),
      alerts_(alerts),
      notification_([this](const QString& activationToken) {
        setActivationToken(activationToken);
        application_.reopen();
      }) {}

void StatusReporter::report() {
  if (!application_.isDisplayed()) {
    return;
  }
  application_.readStatus([this](const std::string& status) {
    show(status, QString(), [this, status] { showAlert(status); });
  });
}

void StatusReporter::trayChanged(bool showsItem) {
  isTrayMissing_ = !showsItem;
  if (showsItem) {
    withdraw();
  } else if (!std::exchange(hasGivenAdvice_, true) && shownWindows().isEmpty()) {
    application_.readStatus([this](const std::string& status) {
      if (isTrayMissing_) {
        show(status, advice, [] {});
      }
    });
  }
}

void StatusReporter::reportSwitch() {
  if (isTrayMissing_) {
    report();
  }
}

void StatusReporter::show(const std::string& status, const QString& more,
                          std::function<void()> failed) {
  // Some desktops show the beginning of the body alone.
  notification_.show({.summary = QGuiApplication::applicationDisplayName() + QLatin1String(": ") +
                                 QString::fromStdString(status),
                      .body = more,
                      .action = QStringLiteral("Tap Test")},
                     std::move(failed));
}

void StatusReporter::showAlert(const std::string& status) {
  alerts_.runModal({.messageText = QGuiApplication::applicationDisplayName().toStdString(),
                    .informativeText = status,
                    .buttons = {"OK"}});
}

}  // namespace zephlin
