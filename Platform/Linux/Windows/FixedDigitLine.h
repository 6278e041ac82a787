#pragma once

#include <QString>
#include <functional>
#include <vector>

namespace zephlin {

/// Lays out a line of text in which every digit takes the width of the widest one and stands in the
/// middle of it, so that a text does not jump when its digits change. Done here because Qt before
/// 6.7 cannot ask a font for its tabular figures (QFont::setFeature). Any thread.
class FixedDigitLine {
 public:
  /// How wide the font makes a text, in device-independent pixels.
  using Advance = std::function<qreal(const QString& text)>;

  struct Piece {
    QString text;
    /// Where it begins, from the beginning of the line.
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

}  // namespace zephlin
