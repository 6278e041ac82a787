#include "Tests/Contract/ShownWindows.h"

#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTextDocumentFragment>

namespace zephlin::contract {

namespace {

std::string plain(const QString& text) {
  return QTextDocumentFragment::fromHtml(text).toPlainText().toStdString();
}

}  // namespace

std::vector<ShownAlert> shownAlerts() {
  std::vector<ShownAlert> shown;
  for (QWidget* const widget : QApplication::topLevelWidgets()) {
    const auto* const box = qobject_cast<QMessageBox*>(widget);
    if (box != nullptr && box->isVisible()) {
      ShownAlert alert = {plain(box->text()), {}};
      for (const QAbstractButton* const button : box->buttons()) {
        alert.buttons.push_back(button->text().toStdString());
      }
      shown.push_back(alert);
    }
  }
  return shown;
}

QWidget* shownWindow(const std::string& title) {
  for (QWidget* const widget : QApplication::topLevelWidgets()) {
    if (widget->isVisible() && widget->windowTitle().toStdString() == title) {
      return widget;
    }
  }
  return nullptr;
}

std::vector<std::string> labelTexts(const QWidget& window) {
  std::vector<std::string> texts;
  for (const QLabel* const label : window.findChildren<QLabel*>()) {
    texts.push_back(label->text().toStdString());
  }
  return texts;
}

bool pressButton(const QWidget& window, const std::string& title) {
  for (QPushButton* const button : window.findChildren<QPushButton*>()) {
    if (button->text().toStdString() == title) {
      button->click();
      return true;
    }
  }
  return false;
}

}  // namespace zephlin::contract
