#include <QPaintDevice>
#include <QPaintEngine>
#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "Platform/Linux/Windows/ColorPalette.h"
#include "Platform/Linux/Windows/LabelWidget.h"
#include "Tests/Unit/Linux/Windows/TreeFixture.h"

namespace zephlin {
namespace {

using Pieces = std::vector<FixedDigitLine::Piece>;

/// A font whose 1 is narrow and whose 8 is wide.
qreal advance(const QString& text) {
  qreal width = 0;
  for (const QChar character : text) {
    width += character == u'1' ? 4 : character == u'8' ? 10 : 8;
  }
  return width;
}

FixedDigitLine line(const QString& text) {
  return {text, advance};
}

TEST(FixedDigitLine, EveryDigitIsAsWideAsTheWidest) {
  for (const char* digits : {"1", "8", "0"}) {
    EXPECT_EQ(line(digits).width(), 10) << digits;
  }
  EXPECT_EQ(line("11 ms").width(), line("88 ms").width());
  EXPECT_EQ(line("2048").width(), 40);
}

TEST(FixedDigitLine, ADigitIsCentredInItsPlace) {
  EXPECT_EQ(line("181").pieces(), (Pieces{{"1", 3}, {"8", 10}, {"1", 23}}));
}

TEST(FixedDigitLine, WordsKeepTheirWidthAndStayWhole) {
  EXPECT_EQ(line("in 12 ms").pieces(), (Pieces{{"in ", 0}, {"1", 27}, {"2", 35}, {" ms", 44}}));
  EXPECT_EQ(line("in 12 ms").width(), 24 + 20 + 24);
}

TEST(FixedDigitLine, AnEmptyTextHasNoPieces) {
  EXPECT_EQ(line("").pieces(), Pieces());
  EXPECT_EQ(line("").width(), 0);
}

constexpr const char* longText =
    "A text that is far too long for a line of eighty points, whatever the font may be";

class LabelTest : public TreeFixture {
 protected:
  std::shared_ptr<Label> realiseLabel(const char* text, Label::Kind kind, double maxWidth = 0) {
    Label::Style style{.kind = kind, .alignment = TextAlignment::Center};
    if (maxWidth > 0) {
      style.preferredMaxLayoutWidth = maxWidth;
    }
    auto made = std::make_shared<Label>(text, style);
    realise(made);
    return made;
  }
  std::shared_ptr<Label> realiseGreenBlock() {
    auto made = std::make_shared<Label>("█", Label::Style{.font = {.pointSize = 40}},
                                        Color{ColorRole::SystemGreen});
    realise(made);
    return made;
  }
  /// A centred line in a box of that width, with that much free at both sides.
  void realiseBoxed(const std::string& text, const Font& font, double width, double inset) {
    const Label::Style style{.font = font, .alignment = TextAlignment::Center};
    auto box = std::make_shared<Box>(width);
    box->addSubview(std::make_shared<Label>(text, style), {.left = inset, .right = inset});
    realise(box);
  }
  QImage image() { return imageOf(window_->contentAsPng()); }
};

TEST_F(LabelTest, ASingleLineIsAsWideAsItsText) {
  realiseLabel(longText, Label::Kind::SingleLine);
  EXPECT_GE(widget().width(), label().fontMetrics().horizontalAdvance(longText));
  EXPECT_EQ(widget().height(), label().fontMetrics().height());
}

TEST_F(LabelTest, AWrappingLabelBreaksAtItsPreferredWidth) {
  realiseLabel(longText, Label::Kind::Wrapping, 80);
  EXPECT_EQ(widget().width(), 80);
  EXPECT_GE(widget().height(), 4 * label().fontMetrics().height());
}

TEST_F(LabelTest, AShortWrappingLabelTakesOneLine) {
  realiseLabel("Short", Label::Kind::Wrapping, 80);
  EXPECT_LT(widget().width(), 80);
  EXPECT_LT(widget().height(), 2 * label().fontMetrics().height());
}

TEST_F(LabelTest, AnEmptyLabelKeepsItsLine) {
  for (const auto kind : {Label::Kind::SingleLine, Label::Kind::Wrapping}) {
    const auto emptied = realiseLabel("Text", kind, 80);
    const int before = label().sizeHint().height();
    emptied->setText("");
    window_->displayIfNeeded();
    EXPECT_EQ(label().sizeHint().height(), before);
    EXPECT_GE(before, label().fontMetrics().height());
  }
}

TEST_F(LabelTest, FollowsItsTextWhileShown) {
  const auto shown = realiseLabel("Before", Label::Kind::Wrapping, 80);
  showAndActivate();
  shown->setText(longText);
  window_->displayIfNeeded();
  QApplication::sendPostedEvents();
  EXPECT_EQ(label().text(), longText);
  EXPECT_GE(widget().height(), 4 * label().fontMetrics().height());
  EXPECT_FALSE(shown->needsDisplay);
}

TEST_F(LabelTest, TakesMarkupAndAmpersandsForText) {
  realiseLabel("<b>R & D</b>", Label::Kind::SingleLine);
  EXPECT_GE(widget().width(), label().fontMetrics().horizontalAdvance("<b>R & D</b>"));
}

/// Whether a pixel of the content has that very colour.
bool contains(const QImage& image, const QColor& color) {
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (image.pixelColor(x, y).rgb() == color.rgb()) {
        return true;
      }
    }
  }
  return false;
}

TEST_F(LabelTest, FollowsItsColourByRole) {
  const auto shown = realiseGreenBlock();
  const auto appearance = appearanceOf(widget().palette());
  const QColor green = resolve({ColorRole::SystemGreen}, appearance);
  const QColor red = resolve({ColorRole::SystemRed}, appearance);
  EXPECT_TRUE(contains(image(), green));
  shown->setTextColor({ColorRole::SystemRed});
  window_->displayIfNeeded();
  EXPECT_TRUE(contains(image(), red));
  EXPECT_FALSE(contains(image(), green));
}

TEST_F(LabelTest, DarkWindowsHaveColoursOfTheirOwn) {
  realiseGreenBlock();
  QPalette dark;
  dark.setColor(QPalette::Window, QColor(0x2d, 0x2d, 0x2d));
  widget().setPalette(dark);
  EXPECT_TRUE(contains(image(), resolve({ColorRole::SystemGreen}, Appearance::Dark)));
}

/// The columns that have ink, as the first and the last.
std::pair<int, int> inkedColumns(const QImage& image) {
  int first = image.width();
  int last = -1;
  for (int x = 0; x < image.width(); ++x) {
    for (int y = 0; y < image.height(); ++y) {
      if (image.pixelColor(x, y) != image.pixelColor(0, 0)) {
        first = std::min(first, x);
        last = x;
      }
    }
  }
  return {first, last};
}

TEST_F(LabelTest, ALineThatIsTooLongForItsBoxShrinksInsteadOfBeingCutOff) {
  realiseBoxed("█" + std::string(60, ' ') + "█", {}, 120, 10);
  const auto [first, last] = inkedColumns(image());
  EXPECT_NEAR(first, 10, 3);
  EXPECT_NEAR(last, 110, 3);
}

/// Records the texts that are painted on it, and where they begin.
class PaintedTexts final : public QPaintDevice, private QPaintEngine {
 public:
  PaintedTexts() : QPaintEngine(AllFeatures) {}

  std::vector<FixedDigitLine::Piece> pieces;

  [[nodiscard]] QPaintEngine* paintEngine() const override {
    return const_cast<PaintedTexts*>(this);
  }

 protected:
  [[nodiscard]] int metric(PaintDeviceMetric metric) const override {
    return metric == PdmDevicePixelRatioScaled
               ? static_cast<int>(QPaintDevice::devicePixelRatioFScale())
               : 1000;
  }

 private:
  bool begin(QPaintDevice* /*device*/) override { return true; }
  bool end() override { return true; }
  [[nodiscard]] Type type() const override { return User; }
  void updateState(const QPaintEngineState& /*state*/) override {}
  void drawPixmap(const QRectF& /*to*/, const QPixmap& /*pixmap*/,
                  const QRectF& /*from*/) override {}
  void drawPath(const QPainterPath& /*path*/) override {}
  void drawPolygon(const QPointF* /*points*/, int /*count*/, PolygonDrawMode /*mode*/) override {}
  void drawTextItem(const QPointF& place, const QTextItem& item) override {
    pieces.push_back({item.text(), place.x()});
  }
};

TEST_F(LabelTest, DigitsOfFixedWidthArePaintedEachInItsPlace) {
  realise(std::make_shared<Label>("Took 128 ms", Label::Style{.font = {.monospacedDigits = true}}));
  showAndActivate();
  PaintedTexts painted;
  label().render(&painted);
  const QFontMetricsF metrics(label().font());
  const FixedDigitLine expected(
      "Took 128 ms", [&metrics](const QString& text) { return metrics.horizontalAdvance(text); });
  ASSERT_EQ(painted.pieces.size(), expected.pieces().size());
  const qreal start = painted.pieces.front().x;
  for (std::size_t piece = 0; piece < painted.pieces.size(); ++piece) {
    EXPECT_EQ(painted.pieces[piece].text, expected.pieces()[piece].text);
    EXPECT_NEAR(painted.pieces[piece].x - start, expected.pieces()[piece].x, 0.01);
  }
}

TEST_F(LabelTest, DigitsOfFixedWidthAreCentredToo) {
  realiseBoxed("Took 12 ms", {.monospacedDigits = true}, 200, 0);
  const auto [first, last] = inkedColumns(image());
  EXPECT_GT(last - first, label().fontMetrics().horizontalAdvance("Took 12 ms") / 2);
  EXPECT_NEAR(first, image().width() - 1 - last, 4);
}

}  // namespace
}  // namespace zephlin
