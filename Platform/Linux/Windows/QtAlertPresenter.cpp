#include <QApplication>
#include <QIcon>
#include <QPushButton>

#include "Platform/Linux/Windows/ActivationToken.h"
#include "Platform/Linux/Windows/QtWindowServer.h"
#include "Platform/Linux/Windows/ViewRealiser.h"

namespace zephlin {

namespace {

constexpr int iconSize = 64;

void setIcon(QMessageBox& box) {
  box.setIcon(QMessageBox::Information);
  if (const QIcon icon = QApplication::windowIcon(); !icon.isNull()) {
    box.setIconPixmap(icon.pixmap(QSize(iconSize, iconSize), box.devicePixelRatioF()));
  }
}

/// Enter pushes the first button; Esc and closing push the last. Without a button for these, the
/// box could not be closed and would keep the application from quitting.
void addButtons(QMessageBox& box, const Alert& alert) {
  QPushButton* last = nullptr;
  for (const std::string& title : alert.buttons) {
    last = box.addButton(buttonText(title), QMessageBox::AcceptRole);
    if (box.buttons().size() == 1) {
      box.setDefaultButton(last);
    }
  }
  box.setEscapeButton(last);
}

}  // namespace

void QtAlertPresenter::runModal(const Alert& alert) {
  if (shown_) {
    isAskedForAgain_ = true;
    comeToFront(*shown_);
    return;
  }
  QMessageBox box;
  shown_ = &box;
  box.setObjectName(QStringLiteral("alert"));
  // exec() would set this too late, because the box is shown before.
  box.setWindowModality(Qt::ApplicationModal);
  box.setWindowFlag(Qt::WindowStaysOnTopHint);
  box.setWindowTitle(QApplication::applicationDisplayName());
  box.setTextFormat(Qt::RichText);
  box.setText(
      QStringLiteral("<b>%1</b>").arg(QString::fromStdString(alert.messageText).toHtmlEscaped()));
  box.setInformativeText(QString::fromStdString(alert.informativeText));
  setIcon(box);
  addButtons(box, alert);
  comeToFront(box);
  // Coming to the front again may hide the box for a moment, which ends exec().
  do {
    isAskedForAgain_ = false;
    box.exec();
  } while (isAskedForAgain_ && box.isVisible());
}

}  // namespace zephlin
