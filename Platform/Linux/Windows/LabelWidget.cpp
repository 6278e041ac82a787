#include "Platform/Linux/Windows/LabelWidget.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QFontMetricsF>
#include <QPainter>
#include <QStyle>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

#include "Platform/Linux/Windows/ColorPalette.h"

namespace zephlin {

namespace {

QFont::Weight realise(FontWeight weight) {
  switch (weight) {
    case FontWeight::Regular:
      return QFont::Normal;
    case FontWeight::Semibold:
      return QFont::DemiBold;
    case FontWeight::Bold:
      return QFont::Bold;
  }
  return QFont::Normal;
}

/// Only size and weight: the family stays the system's, also when the user changes it.
QFont realise(const Font& font, qreal pixelsPerPoint) {
  QFont realised;
  realised.setPixelSize(static_cast<int>(std::lround(font.pointSize * pixelsPerPoint)));
  realised.setWeight(realise(font.weight));
  return realised;
}

/// A text must stay for this long to be announced: one that is about to change again is not read
/// out.
constexpr std::chrono::milliseconds announcementDelay{500};

/// A label whose changes screen readers say. They do that for notifications: what Orca makes of an
/// object of this role is its name, each time it comes to be shown.
class AnnouncedLabel final : public QAccessibleWidget {
 public:
  explicit AnnouncedLabel(QLabel& label)
      : QAccessibleWidget(&label, QAccessible::Notification), label_(label) {}

  [[nodiscard]] QString text(QAccessible::Text which) const override {
    return which == QAccessible::Name ? label_.text() : QAccessibleWidget::text(which);
  }

 private:
  QLabel& label_;
};

/// Called for every widget, under each name of its class and its base classes.
QAccessibleInterface* makeLabelInterface(const QString& /*className*/, QObject* object) {
  auto* const label = dynamic_cast<LabelWidget*>(object);
  return label != nullptr && label->isAnnounced() ? new AnnouncedLabel(*label) : nullptr;
}

bool isDigit(QChar character) {
  return character >= u'0' && character <= u'9';
}

qreal widestDigit(const FixedDigitLine::Advance& advance) {
  qreal widest = 0;
  for (char16_t digit = u'0'; digit <= u'9'; ++digit) {
    widest = std::max(widest, advance(QChar(digit)));
  }
  return widest;
}

}  // namespace

FixedDigitLine::FixedDigitLine(const QString& text, const Advance& advance) {
  const qreal digitWidth = widestDigit(advance);
  for (qsizetype begin = 0; begin < text.size();) {
    if (isDigit(text[begin])) {
      const QString digit(text[begin]);
      pieces_.push_back({digit, width_ + (digitWidth - advance(digit)) / 2});
      width_ += digitWidth;
      ++begin;
      continue;
    }
    const auto end = std::find_if(text.begin() + begin, text.end(), isDigit) - text.begin();
    const QString words = text.mid(begin, end - begin);
    pieces_.push_back({words, width_});
    width_ += advance(words);
    begin = end;
  }
}

LabelWidget::LabelWidget(Label& label, QWidget* parent, qreal pixelsPerPoint)
    : QLabel(parent), label_(label), pixelsPerPoint_(pixelsPerPoint) {
  setTextFormat(Qt::PlainText);
  setFont(realise(label_.style.font, pixelsPerPoint_));
  setAlignment(
      (label_.style.alignment == TextAlignment::Center ? Qt::AlignHCenter : Qt::AlignLeading) |
      Qt::AlignVCenter);
  setText(QString::fromStdString(label_.text()));
  label_.needsDisplay = false;
  if (isAnnounced()) {
    QAccessible::installFactory(makeLabelInterface);
    announced_ = text();
    announcement_.setSingleShot(true);
    announcement_.setInterval(announcementDelay);
    connect(&announcement_, &QTimer::timeout, this, [this] { announce(); });
  }
}

QSize LabelWidget::sizeHint() const {
  const int natural = static_cast<int>(std::ceil(lineWidth()));
  if (!wraps()) {
    return {natural, fontMetrics().height()};
  }
  const auto& limit = label_.style.preferredMaxLayoutWidth;
  const int width = limit ? std::min(natural, static_cast<int>(*limit * pixelsPerPoint_)) : natural;
  return {width, heightForWidth(width)};
}

int LabelWidget::heightForWidth(int width) const {
  if (!wraps()) {
    return -1;
  }
  const QRect space(0, 0, width, QWIDGETSIZE_MAX);
  // An empty text still takes a line.
  const QString measured = text().isEmpty() ? QStringLiteral(" ") : text();
  return fontMetrics().boundingRect(space, drawingFlags(), measured).height();
}

void LabelWidget::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  // Left to right or right to left as the text is, also in windows of the other direction.
  painter.setLayoutDirection(Qt::LayoutDirectionAuto);
  painter.setPen(resolve(label_.textColor(), appearanceOf(palette())));
  // A line that has less room than it needs shrinks, so that nothing is cut off.
  const qreal scale = wraps() ? 1 : std::min(1.0, width() / lineWidth());
  painter.scale(scale, scale);
  const QRectF box(0, 0, width() / scale, height() / scale);
  if (wraps() || !label_.style.font.monospacedDigits) {
    painter.drawText(box, drawingFlags(), text());
  } else {
    drawDigitLine(painter, box);
  }
}

void LabelWidget::drawDigitLine(QPainter& painter, const QRectF& box) const {
  const FixedDigitLine line = digitLine();
  const QSize size(static_cast<int>(std::ceil(line.width())), fontMetrics().height());
  const QRect place =
      QStyle::alignedRect(layoutDirection(), alignment(), size, box.toAlignedRect());
  const QPointF baseline(place.left(), place.top() + fontMetrics().ascent());
  for (const FixedDigitLine::Piece& piece : line.pieces()) {
    painter.drawText(baseline + QPointF(piece.x, 0), piece.text);
  }
}

FixedDigitLine LabelWidget::digitLine() const {
  const QFontMetricsF metrics(font());
  return {text(), [&metrics](const QString& piece) { return metrics.horizontalAdvance(piece); }};
}

qreal LabelWidget::lineWidth() const {
  return label_.style.font.monospacedDigits ? digitLine().width()
                                            : QFontMetricsF(font()).horizontalAdvance(text());
}

int LabelWidget::drawingFlags() const {
  const int flags = static_cast<int>(QStyle::visualAlignment(layoutDirection(), alignment()));
  return wraps() ? flags | Qt::TextWordWrap : flags;
}

void LabelWidget::displayIfNeeded() {
  if (!std::exchange(label_.needsDisplay, false)) {
    return;
  }
  if (const QString wanted = QString::fromStdString(label_.text()); wanted != text()) {
    setText(wanted);
    if (textDidChange) {
      textDidChange();
    }
    if (isAnnounced()) {
      announcement_.start();
    }
  }
  update();
}

void LabelWidget::announce() {
  if (std::exchange(announced_, text()) != text() && isVisible()) {
    QAccessibleEvent event(this, QAccessible::ObjectShow);
    QAccessible::updateAccessibility(&event);
  }
}

}  // namespace zephlin
