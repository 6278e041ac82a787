#pragma once

#include <QMessageBox>
#include <QPointer>

#include "Platform/Window.h"

namespace zephlin {

/// Alerts as Qt's message boxes, above all other windows. Needs a QApplication while it is used.
/// Main thread.
class QtAlertPresenter final : public AlertPresenter {
 public:
  /// Also returns when the user closes or hides the alert, and when the application quits. If an
  /// alert is already shown, brings that one to the front and returns at once.
  void runModal(const Alert& alert) override;

 private:
  QPointer<QMessageBox> shown_;
};

}  // namespace zephlin
