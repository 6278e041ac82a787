#include "Platform/Linux/Windows/ViewWidget.h"

#include <QPainter>
#include <algorithm>
#include <cmath>
#include <utility>

#include "Platform/Linux/Windows/ColorPalette.h"

namespace zephlin {

namespace {

/// The rectangle with its edges between the screen's pixels, where fractional scales put them
/// across: an edge that stands on a pixel is sharp.
QRectF onPixelEdges(const QRectF& rectangle, const QTransform& toDevice) {
  const QRectF device = toDevice.mapRect(rectangle);
  const QRectF sharp(QPointF(std::round(device.left()), std::round(device.top())),
                     QPointF(std::round(device.right()), std::round(device.bottom())));
  return toDevice.inverted().mapRect(sharp);
}

/// As many whole pixels of the screen as come closest, one at least.
qreal inWholePixels(qreal width, qreal pixelsPerPoint) {
  return std::max(1.0, std::round(width * pixelsPerPoint)) / pixelsPerPoint;
}

void drawLayer(QPainter& painter, const Layer& layer, const QRectF& bounds, Appearance appearance) {
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(resolve(layer.backgroundColor, appearance));
  painter.drawRoundedRect(bounds, layer.cornerRadius, layer.cornerRadius);
  if (layer.borderWidth <= 0 || !layer.borderColor) {
    return;
  }
  const qreal width = inWholePixels(layer.borderWidth, painter.deviceTransform().m11());
  const qreal inset = width / 2;
  const qreal radius = std::max(0.0, layer.cornerRadius - inset);
  painter.setPen(QPen(resolve(*layer.borderColor, appearance), width));
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(bounds.adjusted(inset, inset, -inset, -inset), radius, radius);
}

}  // namespace

ViewWidget::ViewWidget(std::shared_ptr<View> view, QWidget* parent)
    : QWidget(parent), view_(std::move(view)), hook_(*view_, [this] { update(); }) {}

void ViewWidget::paintEvent(QPaintEvent*) {
  const bool isAskedFor = std::exchange(view_->needsDisplay, false);
  if (!view_->layer) {
    return;
  }
  if (isAskedFor) {
    view_->updateLayer();
  }
  QPainter painter(this);
  drawLayer(painter, *view_->layer, onPixelEdges(QRectF(rect()), painter.deviceTransform()),
            appearanceOf(palette()));
}

}  // namespace zephlin
