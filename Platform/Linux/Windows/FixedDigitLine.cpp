#include "Platform/Linux/Windows/FixedDigitLine.h"

#include <algorithm>

namespace zephlin {

namespace {

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

}  // namespace zephlin
