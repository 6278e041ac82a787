#include "Platform/Linux/Windows/QtAlertPresenter.h"

#include <QApplication>
#include <QIcon>
#include <QMessageBox>
#include <QPushButton>

#include "Platform/Linux/Windows/ViewRealiser.h"

namespace zephlin {

namespace {

constexpr int iconSize = 64;

void setIcon(QMessageBox& box, AlertStyle style) {
  switch (style) {
    case AlertStyle::Informational:
      box.setIcon(QMessageBox::Information);
      break;
  }
  if (const QIcon icon = QApplication::windowIcon(); !icon.isNull()) {
    box.setIconPixmap(icon.pixmap(QSize(iconSize, iconSize), box.devicePixelRatioF()));
  }
}

/// The first button is the one that Enter pushes, the last the one that Esc and closing push:
/// without one, the box could not be closed, and would keep the application from quitting.
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
  QMessageBox box;
  box.setObjectName(QStringLiteral("alert"));
  box.setWindowFlag(Qt::WindowStaysOnTopHint);
  box.setWindowTitle(QApplication::applicationDisplayName());
  box.setTextFormat(Qt::RichText);
  box.setText(
      QStringLiteral("<b>%1</b>").arg(QString::fromStdString(alert.messageText).toHtmlEscaped()));
  box.setInformativeText(QString::fromStdString(alert.informativeText));
  setIcon(box, alert.style);
  addButtons(box, alert);
  box.show();
  box.raise();
  box.activateWindow();
  box.exec();
}

}  // namespace zephlin
