#pragma once

#include <QLabel>
#include <QString>
#include <QTimer>
#include <functional>
#include <vector>

#include "Platform/Views.h"

namespace zephlin {

/// Lays out a line of text in which every digit takes the width of the widest one and is centred in
/// it, so that a text does not jump when its digits change. Needed because Qt before 6.7 cannot ask
/// a font for its tabular figures (QFont::setFeature). Any thread.
class FixedDigitLine {
 public:
  /// The width of a text in the font, in device-independent pixels.
  using Advance = std::function<qreal(const QString& text)>;

  struct Piece {
    QString text;
    /// Its distance from the beginning of the line.
    qreal x = 0;
    bool operator==(const Piece&) const = default;
  };

  FixedDigitLine(const QString& text, const Advance& advance);

  [[nodiscard]] const std::vector<Piece>& pieces() const { return pieces_; }
  [[nodiscard]] qreal width() const { return width_; }

 private:
  std::vector<Piece> pieces_;
  qreal width_ = 0;
};

/// Shows a label, which it must not outlive. It is a QLabel for screen readers and focus,
/// with its own sizes and painting. Main thread.
class LabelWidget final : public QLabel {
 public:
  /// A point is this many device-independent pixels.
  LabelWidget(Label& label, QWidget* parent, qreal pixelsPerPoint);

  /// As Label::Style::isAnnounced.
  [[nodiscard]] bool isAnnounced() const { return label_.style.isAnnounced; }
  /// Shows the label's text and colour if it needs display.
  void displayIfNeeded();

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
  void announce();
  [[nodiscard]] bool wraps() const { return label_.style.kind == Label::Kind::Wrapping; }
  [[nodiscard]] qreal lineWidth() const;
  [[nodiscard]] int drawingFlags() const;
  [[nodiscard]] FixedDigitLine digitLine() const;
  void drawDigitLine(QPainter& painter, const QRectF& box) const;

  Label& label_;
  qreal pixelsPerPoint_;
  QString announced_;
  QTimer announcement_;
};

}  // namespace zephlin
