#include "Platform/Linux/Windows/ViewRealiser.h"

#include <QBoxLayout>
#include <QGridLayout>
#include <QPushButton>
#include <QStringList>
#include <algorithm>
#include <cmath>
#include <vector>

#include "Platform/Linux/Windows/LabelWidget.h"
#include "Platform/Linux/Windows/ViewWidget.h"

namespace zephlin {

namespace {

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

/// A text in a column of texts means little without the others ("0"), so the first is read out
/// together with them.
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
  // All children share the one cell, each with insets of its own.
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
  // Some styles lay out a part of the widget; insets are to the whole.
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
