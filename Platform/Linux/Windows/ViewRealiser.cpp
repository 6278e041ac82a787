#include "Platform/Linux/Windows/ViewRealiser.h"

#include <QApplication>
#include <QBoxLayout>
#include <QFontInfo>
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

void drawLayer(QPainter& painter, const Layer& layer, const QRectF& bounds, Appearance appearance,
               qreal pixelsPerPoint) {
  const qreal cornerRadius = layer.cornerRadius * pixelsPerPoint;
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(resolve(layer.backgroundColor, appearance));
  painter.drawRoundedRect(bounds, cornerRadius, cornerRadius);
  if (layer.borderWidth <= 0 || !layer.borderColor) {
    return;
  }
  const qreal width =
      inWholePixels(layer.borderWidth * pixelsPerPoint, painter.deviceTransform().m11());
  const qreal inset = width / 2;
  const qreal radius = std::max(0.0, cornerRadius - inset);
  painter.setPen(QPen(resolve(*layer.borderColor, appearance), width));
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(bounds.adjusted(inset, inset, -inset, -inset), radius, radius);
}

/// Shows a box's layer, if it has one, behind its children.
class BoxWidget final : public QWidget {
 public:
  BoxWidget(Box& box, QWidget* parent, qreal pixelsPerPoint)
      : QWidget(parent), box_(box), pixelsPerPoint_(pixelsPerPoint) {}

  void displayIfNeeded();

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  Box& box_;
  qreal pixelsPerPoint_;
};

void BoxWidget::displayIfNeeded() {
  if (box_.needsDisplay) {
    update();
  }
}

void BoxWidget::paintEvent(QPaintEvent*) {
  const bool isAskedFor = std::exchange(box_.needsDisplay, false);
  if (!box_.layer) {
    return;
  }
  if (isAskedFor) {
    box_.updateLayer();
  }
  QPainter painter(this);
  drawLayer(painter, *box_.layer, onPixelEdges(QRectF(rect()), painter.deviceTransform()),
            appearanceOf(palette()), pixelsPerPoint_);
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

/// Makes one widget for the view that it visits.
class Realiser final : public ViewVisitor {
 public:
  Realiser(QWidget* parent, qreal pixelsPerPoint)
      : parent_(parent), pixelsPerPoint_(pixelsPerPoint) {}

  [[nodiscard]] QWidget* made() const { return made_; }
  [[nodiscard]] int pixels(double points) const {
    return static_cast<int>(std::lround(points * pixelsPerPoint_));
  }

  void visit(Box& box) override;
  void visit(Label& label) override { made_ = new LabelWidget(label, parent_, pixelsPerPoint_); }
  void visit(Button& button) override;
  void visit(StackView& stack) override;

 private:
  [[nodiscard]] QMargins margins(const EdgeInsets& insets) const {
    return {pixels(insets.left), pixels(insets.top), pixels(insets.right), pixels(insets.bottom)};
  }

  QWidget* parent_;
  qreal pixelsPerPoint_;
  QWidget* made_ = nullptr;
};

void Realiser::visit(Box& box) {
  made_ = new BoxWidget(box, parent_, pixelsPerPoint_);
  // All children share one cell, each with its own insets.
  auto* layout = new QGridLayout(made_);
  layout->setContentsMargins({});
  for (const Box::Subview& subview : box.subviews()) {
    auto* inset = new QVBoxLayout;
    inset->setContentsMargins(margins(subview.insets));
    inset->addWidget(realise(*subview.view, made_, pixelsPerPoint_));
    layout->addLayout(inset, 0, 0);
  }
}

void Realiser::visit(Button& button) {
  auto* widget = new QPushButton(buttonText(button.title), parent_);
  // Return presses the button that has the focus. A click does not give it the focus, so that
  // nothing typed after it presses it again.
  widget->setAutoDefault(true);
  widget->setFocusPolicy(Qt::TabFocus);
  QObject::connect(widget, &QPushButton::clicked, widget, [action = button.action] {
    if (action) {
      action();
    }
  });
  made_ = widget;
}

void Realiser::visit(StackView& stack) {
  made_ = new QWidget(parent_);
  const bool isVertical = stack.layout.orientation == StackView::Orientation::Vertical;
  const bool isEqual = stack.layout.distribution == StackView::Distribution::FillEqually;
  auto* layout = new QBoxLayout(isVertical ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
  layout->setContentsMargins(margins(stack.layout.edgeInsets));
  layout->setSpacing(0);
  std::vector<LabelWidget*> labels;
  const auto& arranged = stack.arrangedSubviews();
  for (const auto& [view, spacingAfter] : arranged) {
    QWidget* const child = realise(*view, made_, pixelsPerPoint_);
    layout->addWidget(child, isEqual ? 1 : 0, isVertical ? Qt::AlignHCenter : Qt::AlignVCenter);
    if (view != arranged.back().view) {
      layout->addSpacing(pixels(spacingAfter));
    }
    if (auto* label = dynamic_cast<LabelWidget*>(child)) {
      labels.push_back(label);
    }
  }
  if (labels.size() > 1 && labels.size() == arranged.size()) {
    readTogether(labels);
  }
  made_->setLayout(layout);
}

}  // namespace

QWidget* realise(View& view, QWidget* parent, qreal pixelsPerPoint) {
  Realiser realiser(parent, pixelsPerPoint);
  view.accept(realiser);
  QWidget* const widget = realiser.made();
  // Some styles lay out only part of the widget; insets refer to the whole.
  widget->setAttribute(Qt::WA_LayoutUsesWidgetRect);
  if (view.fixedWidth) {
    widget->setFixedWidth(realiser.pixels(*view.fixedWidth));
  }
  return widget;
}

qreal usualPixelsPerPoint() {
  // The default font of most desktops has 10 points: 13 pixels.
  constexpr qreal usualHeight = 40.0 / 3;
  return std::max(1.0, QFontInfo(QApplication::font()).pixelSize() / usualHeight);
}

void displayIfNeeded(QWidget& realised) {
  QList<QWidget*> widgets = realised.findChildren<QWidget*>();
  widgets.append(&realised);
  for (QWidget* const widget : widgets) {
    if (auto* const label = dynamic_cast<LabelWidget*>(widget)) {
      label->displayIfNeeded();
    } else if (auto* const box = dynamic_cast<BoxWidget*>(widget)) {
      box->displayIfNeeded();
    }
  }
}

QString buttonText(const std::string& title) {
  return QString::fromStdString(title).replace(u'&', QStringLiteral("&&"));
}

}  // namespace zephlin
