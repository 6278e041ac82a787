#include "Platform/Linux/Windows/QtWindowServer.h"

#include <QAccessibleWidget>
#include <QApplication>
#include <QBuffer>
#include <QCloseEvent>
#include <QCursor>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPixmap>
#include <QScreen>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "Platform/Linux/Windows/ActivationToken.h"
#include "Platform/Linux/Windows/ViewRealiser.h"

namespace zephlin {

namespace {

/// Tiling window managers do not tile a dialog, and it has no minimise button.
constexpr Qt::WindowFlags floatingDialog = Qt::Dialog | Qt::CustomizeWindowHint |
                                           Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                                           Qt::WindowCloseButtonHint | Qt::WindowStaysOnTopHint;

/// How much of a screen's height and width a window may take; the rest is for its frame.
constexpr qreal shareOfScreen = 0.94;

/// A floating window of fixed size that the user can only close, by its button or by Esc; it then
/// hides. The delegate is called when the user closes it, not when the application ends.
class WindowWidget final : public QWidget {
 public:
  WindowWidget(const WindowDescription& description, std::shared_ptr<View> contentView);

  [[nodiscard]] QWidget& content() const { return *content_; }
  /// From now on the window has the size of its content, also when that grows.
  void sizeToFitContent();
  void centerOnScreen();
  void makeKeyAndOrderFront();

  std::weak_ptr<WindowDelegate> delegate;

 protected:
  void changeEvent(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void tellDelegateAndHide();
  void showContent(qreal pixelsPerPoint);
  void takeSizeOfContent();

  // What the widgets show.
  const std::shared_ptr<View> contentView_;
  qreal pixelsPerPoint_ = usualPixelsPerPoint();
  QWidget* content_ = nullptr;
};

/// For Qt a window that is no QDialog is just a part of something, and screen readers do not read
/// such a part out.
QAccessibleInterface* makeWindowInterface(const QString& /*className*/, QObject* object) {
  auto* const window = dynamic_cast<WindowWidget*>(object);
  return window == nullptr ? nullptr : new QAccessibleWidget(window, QAccessible::Dialog);
}

WindowWidget::WindowWidget(const WindowDescription& description, std::shared_ptr<View> contentView)
    : QWidget(nullptr, floatingDialog), contentView_(std::move(contentView)) {
  QAccessible::installFactory(makeWindowInterface);
  setWindowTitle(QString::fromStdString(description.title));
  setFixedSize(
      (QSizeF(description.contentWidth, description.contentHeight) * pixelsPerPoint_).toSize());
  showContent(pixelsPerPoint_);
}

void WindowWidget::showContent(qreal pixelsPerPoint) {
  // A title bar of our own (TitleBar.h) stays.
  QWidget* const titleBar = layout() == nullptr ? nullptr : layout()->menuBar();
  delete layout();
  delete content_;
  // Before its layout, which otherwise remembers sizes that the content had while it was built.
  content_ = realise(*contentView_, this, pixelsPerPoint);
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins({});
  layout->setSizeConstraint(QLayout::SetNoConstraint);
  layout->setMenuBar(titleBar);
  layout->addWidget(content_);
}

void WindowWidget::sizeToFitContent() {
  takeSizeOfContent();
  // Large text may not fit on the screen.
  const QSizeF room = QSizeF(screen()->availableSize()) * shareOfScreen;
  const qreal share = std::min(room.width() / width(), room.height() / height());
  if (share < 1) {
    showContent(pixelsPerPoint_ * share);
    takeSizeOfContent();
  }
}

void WindowWidget::takeSizeOfContent() {
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

void WindowWidget::makeKeyAndOrderFront() {
  if (!isVisible()) {
    // Otherwise Qt focuses the first button without showing it, and a space pushes it.
    setFocus();
  }
  comeToFront(*this);
}

void WindowWidget::changeEvent(QEvent* event) {
  if (event->type() == QEvent::FontChange) {
    // Later, because Qt tells the content too.
    QMetaObject::invokeMethod(
        this,
        [this] {
          const qreal usual = usualPixelsPerPoint();
          if (std::exchange(pixelsPerPoint_, usual) != usual) {
            showContent(usual);
            sizeToFitContent();
          }
        },
        Qt::QueuedConnection);
  }
  QWidget::changeEvent(event);
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

class QtWindow final : public Window {
 public:
  QtWindow(const WindowDescription& description, std::shared_ptr<View> contentView)
      : widget_(description, std::move(contentView)) {}

  void setDelegate(std::weak_ptr<WindowDelegate> delegate) override {
    widget_.delegate = std::move(delegate);
  }
  void setContentSizeToFit() override { widget_.sizeToFitContent(); }
  void center() override { widget_.centerOnScreen(); }
  void makeKeyAndOrderFront() override { widget_.makeKeyAndOrderFront(); }
  void displayIfNeeded() override { zephlin::displayIfNeeded(widget_.content()); }
  std::optional<std::string> contentAsPng() override;

 private:
  WindowWidget widget_;
};

std::optional<std::string> QtWindow::contentAsPng() {
  QBuffer png;
  png.open(QIODevice::WriteOnly);
  if (!widget_.content().grab().save(&png, "PNG")) {
    return std::nullopt;
  }
  return png.data().toStdString();
}

}  // namespace

std::unique_ptr<Window> QtWindowServer::makeWindow(const WindowDescription& description,
                                                   std::shared_ptr<View> contentView) {
  return std::make_unique<QtWindow>(description, std::move(contentView));
}

QList<QWidget*> shownWindows() {
  QList<QWidget*> windows;
  for (QWidget* const widget : QApplication::topLevelWidgets()) {
    const bool isManaged =
        (widget->windowType() == Qt::Window || widget->windowType() == Qt::Dialog) &&
        !widget->windowFlags().testFlag(Qt::BypassWindowManagerHint);
    if (isManaged && widget->isVisible()) {
      windows.append(widget);
    }
  }
  return windows;
}

}  // namespace zephlin
