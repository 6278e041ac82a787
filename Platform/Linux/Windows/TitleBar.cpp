#include "Platform/Linux/Windows/TitleBar.h"

#include <QAbstractButton>
#include <QCloseEvent>
#include <QEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLayout>
#include <QMouseEvent>
#include <QPainter>
#include <QWindow>

namespace zephlin {

namespace {

constexpr int margin = 6;

/// A cross, in a circle while the pointer is over it. Leaves the keyboard's focus where it is, as
/// the button of a frame does.
class CloseButton final : public QAbstractButton {
 public:
  CloseButton() {
    setAccessibleName(tr("Close"));
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::NoFocus);
  }

  [[nodiscard]] QSize sizeHint() const override {
    constexpr int side = 24;
    return {side, side};
  }

 protected:
  void paintEvent(QPaintEvent* event) override;
};

void CloseButton::paintEvent(QPaintEvent* /*event*/) {
  constexpr float faint = 0.15F;
  constexpr double crossRadius = 4;
  constexpr double strokeWidth = 1.6;
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  QColor color = palette().color(QPalette::WindowText);
  painter.setPen(QPen(color, strokeWidth));
  const QRectF cross(rect().center() + QPointF(0.5 - crossRadius, 0.5 - crossRadius),
                     QSizeF(2 * crossRadius, 2 * crossRadius));
  painter.drawLine(cross.topLeft(), cross.bottomRight());
  painter.drawLine(cross.bottomLeft(), cross.topRight());
  if (underMouse()) {
    color.setAlphaF(isDown() ? 2 * faint : faint);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawEllipse(rect());
  }
}

/// Unlike QWidget::close() and QWindow::close(), says that it comes from the user (spontaneous).
void closeAsTheCompositor(const QWidget& window) {
  QCloseEvent event;
  QCoreApplication::sendEvent(window.windowHandle(), &event);
}

/// Moves the window when it is dragged.
class TitleBar final : public QWidget {
 public:
  explicit TitleBar(QWidget& window);

 protected:
  void mousePressEvent(QMouseEvent* event) override;
};

TitleBar::TitleBar(QWidget& window) : QWidget(&window) {
  auto* title = new QLabel(window.windowTitle());
  title->setAlignment(Qt::AlignCenter);
  QFont bold = title->font();
  bold.setBold(true);
  title->setFont(bold);
  connect(&window, &QWidget::windowTitleChanged, title, &QLabel::setText);

  auto* close = new CloseButton();
  connect(close, &CloseButton::clicked, &window, [&window] { closeAsTheCompositor(window); });

  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(margin, margin, margin, margin);
  // As wide as the button, so that the title is in the middle.
  layout->addSpacing(close->sizeHint().width());
  layout->addWidget(title, 1);
  layout->addWidget(close);
}

void TitleBar::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) {
    window()->windowHandle()->startSystemMove();
  }
}

/// A line around the window, which has no shadow.
class Outline final : public QWidget {
 public:
  explicit Outline(QWidget& window) : QWidget(&window) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    window.installEventFilter(this);
  }

  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::Resize || event->type() == QEvent::Show) {
      resize(window()->size());
      raise();
    }
    return QWidget::eventFilter(watched, event);
  }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
  }
};

}  // namespace

void replaceDecorationOfQt(QWidget& window) {
  const bool isDecoratedByQt = QGuiApplication::platformName().startsWith("wayland") &&
                               !window.windowHandle()->frameMargins().isNull();
  if (isDecoratedByQt) {
    // Without the hints so far: one for a button would bring the frame back. Hides the window.
    window.setWindowFlags(window.windowType() | Qt::FramelessWindowHint);
    window.layout()->setMenuBar(new TitleBar(window));
    new Outline(window);
    window.show();
  }
}

}  // namespace zephlin
