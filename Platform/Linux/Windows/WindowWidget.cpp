#include "Platform/Linux/Windows/WindowWidget.h"

#include <QCloseEvent>
#include <QCursor>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QScreen>
#include <QVBoxLayout>

#include "Platform/Linux/Windows/ViewRealiser.h"

namespace zephlin {

namespace {

/// As a dialogue a window is not tiled by window managers that tile, and has no minimise button.
constexpr Qt::WindowFlags floatingDialog = Qt::Dialog | Qt::CustomizeWindowHint |
                                           Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                                           Qt::WindowCloseButtonHint | Qt::WindowStaysOnTopHint;

}  // namespace

WindowWidget::WindowWidget(const WindowDescription& description,
                           const std::shared_ptr<View>& contentView)
    : QWidget(nullptr, floatingDialog), content_(realise(contentView, this)) {
  setWindowTitle(QString::fromStdString(description.title));
  setFixedSize(static_cast<int>(description.contentWidth),
               static_cast<int>(description.contentHeight));
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins({});
  layout->setSizeConstraint(QLayout::SetNoConstraint);
  layout->addWidget(content_);
}

void WindowWidget::sizeToFitContent() {
  layout()->setSizeConstraint(QLayout::SetFixedSize);
  layout()->activate();
}

void WindowWidget::centerOnScreen() {
  const QScreen* pointed = QGuiApplication::screenAt(QCursor::pos());
  const QScreen* shownOn = pointed != nullptr ? pointed : screen();
  QRect frame = frameGeometry();
  frame.moveCenter(shownOn->availableGeometry().center());
  move(frame.topLeft());
}

void WindowWidget::comeToFront() {
  if (!isVisible()) {
    // Otherwise Qt gives the focus to the first button, unseen, and a space pushes it.
    setFocus();
  }
  setWindowState(windowState() & ~Qt::WindowMinimized);
  show();
  raise();
  activateWindow();
}

void WindowWidget::closeEvent(QCloseEvent* event) {
  event->accept();
  if (event->spontaneous()) {
    tellDelegateAndHide();
  }
}

void WindowWidget::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Cancel)) {
    tellDelegateAndHide();
  } else {
    QWidget::keyPressEvent(event);
  }
}

void WindowWidget::tellDelegateAndHide() {
  if (const auto told = delegate.lock()) {
    told->windowWillClose();
  }
  hide();
}

}  // namespace zephlin
