#include "Platform/Linux/Windows/ViewRealiser.h"

#include <QBoxLayout>
#include <QGridLayout>
#include <QPainter>
#include <QPushButton>
#include <QStringList>
#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "Platform/Linux/Windows/ColorPalette.h"
#include "Platform/Linux/Windows/LabelWidget.h"

namespace zephlin {

namespace {

/// The rectangle with its edges moved to the screen's pixels, which fractional scales put them
/// across: only such an edge is sharp.
QRectF onPixelEdges(const QRectF& rectangle, const QTransform& toDevice) {
  const QRectF device = toDevice.mapRect(rectangle);
  const QRectF sharp(QPointF(std::round(device.left()), std::round(device.top())),
                     QPointF(std::round(device.right()), std::round(device.bottom())));
  return toDevice.inverted().mapRect(sharp);
}

/// The nearest whole number of screen pixels, at least one.
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

/// Shows a view's layer, if it has one, behind its children.
class ViewWidget final : public QWidget {
 public:
  ViewWidget(std::shared_ptr<View> view, QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  const std::shared_ptr<View> view_;
  DisplayHook hook_;
};

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

int pixels(double points) {
  return static_cast<int>(std::lround(points));
}

QMargins margins(const EdgeInsets& insets) {
  return {pixels(insets.left), pixels(insets.top), pixels(insets.right), pixels(insets.bottom)};
}

QWidget* realiseButton(const std::shared_ptr<Button>& button, QWidget* parent) {
  auto* widget = new QPushButton(buttonText(button->title), parent);
  QObject::connect(widget, &QPushButton::clicked, widget, [button] {
    if (button->action) {
      button->action();
    }
  });
  return widget;
}

/// One text of a column ("0") means little without the others, so screen readers get them all as
/// the name of the first.
void readTogether(const std::vector<LabelWidget*>& labels) {
  const auto rename = [labels] {
    QStringList texts;
    for (const LabelWidget* label : labels) {
      texts.append(label->text());
    }
    labels.front()->setAccessibleName(texts.join(u' '));
  };
  for (LabelWidget* label : labels) {
    label->textDidChange = rename;
  }
  rename();
}

QWidget* realiseStack(const std::shared_ptr<StackView>& stack, QWidget* parent) {
  auto* widget = new ViewWidget(stack, parent);
  const bool isVertical = stack->orientation == StackView::Orientation::Vertical;
  const bool isEqual = stack->distribution == StackView::Distribution::FillEqually;
  auto* layout = new QBoxLayout(isVertical ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
  layout->setContentsMargins(margins(stack->edgeInsets));
  layout->setSpacing(0);
  std::vector<LabelWidget*> labels;
  const auto& arranged = stack->arrangedSubviews();
  for (const auto& view : arranged) {
    QWidget* const child = realise(view, widget);
    layout->addWidget(child, isEqual ? 1 : 0, isVertical ? Qt::AlignHCenter : Qt::AlignVCenter);
    if (view != arranged.back()) {
      layout->addSpacing(pixels(stack->spacingAfter(*view)));
    }
    if (auto* label = dynamic_cast<LabelWidget*>(child)) {
      labels.push_back(label);
    }
  }
  if (labels.size() > 1 && labels.size() == arranged.size()) {
    readTogether(labels);
  }
  widget->setLayout(layout);
  return widget;
}

QWidget* realisePlainView(const std::shared_ptr<View>& view, QWidget* parent) {
  auto* widget = new ViewWidget(view, parent);
  // All children share one cell, each with its own insets.
  auto* layout = new QGridLayout(widget);
  layout->setContentsMargins({});
  for (const View::Subview& subview : view->subviews()) {
    auto* inset = new QVBoxLayout;
    inset->setContentsMargins(margins(subview.insets));
    inset->addWidget(realise(subview.view, widget));
    layout->addLayout(inset, 0, 0);
  }
  return widget;
}

QWidget* realiseKind(const std::shared_ptr<View>& view, QWidget* parent) {
  if (auto label = std::dynamic_pointer_cast<Label>(view)) {
    return new LabelWidget(std::move(label), parent);
  }
  if (auto button = std::dynamic_pointer_cast<Button>(view)) {
    return realiseButton(button, parent);
  }
  if (auto stack = std::dynamic_pointer_cast<StackView>(view)) {
    return realiseStack(stack, parent);
  }
  return realisePlainView(view, parent);
}

}  // namespace

QWidget* realise(const std::shared_ptr<View>& view, QWidget* parent) {
  QWidget* const widget = realiseKind(view, parent);
  // Some styles lay out only part of the widget; insets refer to the whole.
  widget->setAttribute(Qt::WA_LayoutUsesWidgetRect);
  if (view->fixedWidth) {
    widget->setFixedWidth(pixels(*view->fixedWidth));
  }
  return widget;
}

QString buttonText(const std::string& title) {
  return QString::fromStdString(title).replace(u'&', QStringLiteral("&&"));
}

}  // namespace zephlin
