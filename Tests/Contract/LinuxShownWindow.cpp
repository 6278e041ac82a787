#include "Tests/Contract/LinuxShownWindow.h"

#include <QApplication>
#include <QBoxLayout>
#include <QImage>
#include <QLabel>
#include <QMessageBox>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QTextDocumentFragment>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numbers>

#include "Platform/Linux/Windows/ColorPalette.h"

namespace zephlin::contract {

namespace {

/// Large enough for edges and strokes of letters to be several pixels wide.
constexpr int pixelsPerPoint = 8;

/// The widget without its children and without what is behind it.
QImage drawn(QWidget& widget) {
  QImage image(widget.size() * pixelsPerPoint, QImage::Format_ARGB32_Premultiplied);
  image.setDevicePixelRatio(pixelsPerPoint);
  image.fill(Qt::transparent);
  widget.render(&image, {}, {}, QWidget::RenderFlags());
  return image;
}

bool isNear(const QColor& one, const QColor& other) {
  constexpr int tolerance = 3;
  return std::abs(one.red() - other.red()) <= tolerance &&
         std::abs(one.green() - other.green()) <= tolerance &&
         std::abs(one.blue() - other.blue()) <= tolerance &&
         std::abs(one.alpha() - other.alpha()) <= tolerance;
}

/// The colour that looks like this over `ground`, among those that the application uses.
std::optional<Color> roleOf(const QColor& seen, const QColor& ground, Appearance appearance) {
  for (const double alpha : {1.0, 0.14}) {
    for (const ColorRole role :
         {ColorRole::Label, ColorRole::SecondaryLabel, ColorRole::TertiaryLabel,
          ColorRole::Separator, ColorRole::ControlBackground, ColorRole::SystemGreen,
          ColorRole::SystemRed, ColorRole::SystemOrange}) {
      QImage expected(1, 1, QImage::Format_ARGB32_Premultiplied);
      expected.fill(ground);
      QPainter(&expected).fillRect(0, 0, 1, 1, resolve({role, alpha}, appearance));
      if (isNear(expected.pixelColor(0, 0), seen)) {
        return Color{role, alpha};
      }
    }
  }
  return std::nullopt;
}

/// The colour of a text: that of its most opaque pixel, which is inside a stroke.
std::optional<Color> textColorOf(QWidget& label) {
  const QImage image = drawn(label);
  QColor seen = Qt::transparent;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (qAlpha(image.pixel(x, y)) > seen.alpha()) {
        seen = image.pixelColor(x, y);
      }
    }
  }
  return roleOf(seen, Qt::transparent, appearanceOf(label.palette()));
}

/// In points, from how much of the corner's square the rounding leaves out.
double cornerRadiusOf(const QImage& image) {
  constexpr double leftOutOfASquare = 1 - std::numbers::pi / 4;
  const int half = std::min(image.width(), image.height()) / 2;
  int missing = 0;
  for (int y = 0; y < half; ++y) {
    for (int x = 0; x < half; ++x) {
      missing += qAlpha(image.pixel(x, y)) == 0 ? 1 : 0;
    }
  }
  return std::round(std::sqrt(missing / leftOutOfASquare) / pixelsPerPoint);
}

std::optional<Layer> layerOf(QWidget& widget) {
  const QImage image = drawn(widget);
  const QPoint center = image.rect().center();
  const QColor fill = image.pixelColor(center);
  if (fill.alpha() == 0) {
    return std::nullopt;
  }
  const Appearance appearance = appearanceOf(widget.palette());
  Layer layer;
  layer.cornerRadius = cornerRadiusOf(image);
  layer.backgroundColor = roleOf(fill, Qt::transparent, appearance).value_or(Color{});
  int borderPixels = 0;
  while (borderPixels < center.y() && !isNear(image.pixelColor(center.x(), borderPixels), fill)) {
    ++borderPixels;
  }
  layer.borderWidth = static_cast<double>(borderPixels) / pixelsPerPoint;
  if (borderPixels > 0) {
    layer.borderColor = roleOf(image.pixelColor(center.x(), borderPixels / 2), fill, appearance);
  }
  return layer;
}

Font fontOf(const QFont& font) {
  const FontWeight weight = font.weight() == QFont::Bold       ? FontWeight::Bold
                            : font.weight() == QFont::DemiBold ? FontWeight::Semibold
                                                               : FontWeight::Regular;
  return {static_cast<double>(font.pixelSize()), weight, false};
}

ShownView readBack(QWidget& widget, const QWidget& content, int depth) {
  ShownView view;
  view.depth = depth;
  const QPoint place = widget.mapTo(&content, QPoint());
  view.left = place.x();
  view.top = place.y();
  view.width = widget.width();
  view.height = widget.height();
  if (const auto* const label = qobject_cast<const QLabel*>(&widget)) {
    view.kind = ShownView::Kind::Label;
    view.text = label->text().toStdString();
    view.wraps = label->hasHeightForWidth();
    view.font = fontOf(label->font());
    view.textColor = textColorOf(widget);
    view.alignment = (label->alignment() & Qt::AlignHCenter) != 0 ? TextAlignment::Center
                                                                  : TextAlignment::Natural;
  } else if (const auto* const button = qobject_cast<const QPushButton*>(&widget)) {
    view.kind = ShownView::Kind::Button;
    view.text = button->text().toStdString();
  } else if (const auto* const stack = qobject_cast<const QBoxLayout*>(widget.layout())) {
    view.kind = stack->direction() == QBoxLayout::TopToBottom ? ShownView::Kind::Column
                                                              : ShownView::Kind::Row;
  } else {
    view.layer = layerOf(widget);
  }
  return view;
}

void addTree(QWidget& widget, const QWidget& content, int depth, std::vector<ShownView>& views) {
  views.push_back(readBack(widget, content, depth));
  for (QWidget* const child : widget.findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
    addTree(*child, content, depth + 1, views);
  }
}

// A window that was centred grows downwards when one of its texts needs another line.
bool isCentered(const QWidget& window) {
  constexpr int lineHeight = 20;
  const QPoint off =
      window.frameGeometry().center() - window.screen()->availableGeometry().center();
  return std::abs(off.x()) <= 1 && off.y() >= -1 && off.y() <= lineHeight;
}

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

ShownWindow readBack(QWidget& window) {
  ShownWindow shown;
  shown.isFloating = window.windowFlags().testFlag(Qt::WindowStaysOnTopHint);
  shown.isResizable = window.minimumSize() != window.maximumSize();
  shown.isCentered = isCentered(window);
  auto* const content = window.findChild<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
  addTree(*content, *content, 0, shown.views);
  return shown;
}

}  // namespace zephlin::contract
