#pragma once

#include <QLabel>
#include <functional>
#include <memory>

#include "Platform/Linux/Windows/DisplayHook.h"
#include "Platform/Linux/Windows/FixedDigitLine.h"
#include "Platform/Views.h"

namespace zephlin {

/// Shows a label and follows its text and its colour. A QLabel for screen readers and focus; sizes
/// and painting are its own. A point is a device-independent pixel. Main thread.
class LabelWidget final : public QLabel {
 public:
  LabelWidget(std::shared_ptr<Label> label, QWidget* parent);

  [[nodiscard]] QSize sizeHint() const override;
  /// Never less than the text needs, in one line or at the width where it wraps.
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }
  [[nodiscard]] bool hasHeightForWidth() const override { return wraps(); }
  [[nodiscard]] int heightForWidth(int width) const override;

  /// Called after each change of the text.
  std::function<void()> textDidChange;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  [[nodiscard]] bool wraps() const { return label_->kind == Label::Kind::Wrapping; }
  [[nodiscard]] qreal lineWidth() const;
  [[nodiscard]] int drawingFlags() const;
  [[nodiscard]] FixedDigitLine digitLine() const;
  void drawDigitLine(QPainter& painter, const QRectF& box) const;
  void followLabel();

  const std::shared_ptr<Label> label_;
  DisplayHook hook_;
};

}  // namespace zephlin
