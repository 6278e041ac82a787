#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "Platform/Linux/Windows/ColorPalette.h"

namespace zephlin {
namespace {

QColor over(const QColor& back, const QColor& front) {
  const float alpha = front.alphaF();
  const auto mixed = [alpha](float below, float above) {
    return below * (1 - alpha) + above * alpha;
  };
  return QColor::fromRgbF(mixed(back.redF(), front.redF()), mixed(back.greenF(), front.greenF()),
                          mixed(back.blueF(), front.blueF()));
}

/// WCAG 2.1, "relative luminance".
double luminance(const QColor& color) {
  const auto linear = [](float channel) {
    const auto value = static_cast<double>(channel);
    return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
         0.0722 * linear(color.blueF());
}

/// WCAG 2.1, "contrast ratio", of a text on a ground.
double contrast(const QColor& ground, const QColor& text) {
  const double one = luminance(ground) + 0.05;
  const double other = luminance(over(ground, text)) + 0.05;
  return std::max(one, other) / std::min(one, other);
}

QPalette paletteWith(const QColor& window) {
  QPalette palette;
  palette.setColor(QPalette::Window, window);
  return palette;
}

/// The windows of Fusion, Breeze, Adwaita and Yaru, light and dark.
class Themes : public testing::TestWithParam<const char*> {
 protected:
  QColor color(ColorRole role, double alpha = 1) const {
    return resolve({role, alpha}, appearanceOf(paletteWith(window_)));
  }
  QColor box(ColorRole role, double alpha = 1) const { return over(window_, color(role, alpha)); }

  const QColor window_{QString(GetParam())};
};

INSTANTIATE_TEST_SUITE_P(Usual, Themes,
                         testing::Values("#efefef", "#eff0f1", "#fafafa", "#f6f5f4", "#ffffff",
                                         "#323232", "#2d2d2d", "#242424", "#202326", "#1e1e1e",
                                         "#31363b"));

TEST_P(Themes, LabelsAreLegibleOnWindowsAndCards) {
  for (const QColor& ground : {window_, box(ColorRole::ControlBackground)}) {
    EXPECT_GE(contrast(ground, color(ColorRole::Label)), 7);
    EXPECT_GE(contrast(ground, color(ColorRole::SecondaryLabel)), 4.5);
    EXPECT_GE(contrast(ground, color(ColorRole::TertiaryLabel)), 3);
    EXPECT_GE(contrast(ground, color(ColorRole::SystemOrange)), 4.5);
  }
}

TEST_P(Themes, VerdictsAreLegibleOnTheirPill) {
  EXPECT_GE(contrast(box(ColorRole::Separator), color(ColorRole::SecondaryLabel)), 4.5);
  for (const ColorRole role : {ColorRole::SystemGreen, ColorRole::SystemRed}) {
    EXPECT_GE(contrast(box(role, 0.14), color(role)), 4.5);
  }
}

TEST_P(Themes, LabelsStepDownInContrast) {
  const double first = contrast(window_, color(ColorRole::Label));
  const double second = contrast(window_, color(ColorRole::SecondaryLabel));
  const double third = contrast(window_, color(ColorRole::TertiaryLabel));
  EXPECT_GT(first, second * 1.25);
  EXPECT_GT(second, third * 1.25);
}

TEST_P(Themes, BoxesStandOutALittle) {
  const QColor card = box(ColorRole::ControlBackground);
  EXPECT_GE(luminance(card), luminance(window_));
  EXPECT_GE(contrast(card, color(ColorRole::Separator)), 1.1);
  EXPECT_GE(contrast(window_, color(ColorRole::Separator)), 1.1);
}

TEST(ColorPalette, AWindowIsDarkByItsColour) {
  EXPECT_EQ(appearanceOf(paletteWith(Qt::white)), Appearance::Light);
  EXPECT_EQ(appearanceOf(paletteWith(Qt::black)), Appearance::Dark);
}

TEST(ColorPalette, AColoursOwnAlphaComesOnTop) {
  const QColor whole = resolve({ColorRole::Separator, 1}, Appearance::Light);
  const QColor half = resolve({ColorRole::Separator, 0.5}, Appearance::Light);
  EXPECT_NEAR(half.alphaF(), whole.alphaF() / 2, 0.001);
  EXPECT_NEAR(resolve({ColorRole::SystemRed, 0.14}, Appearance::Dark).alphaF(), 0.14, 0.001);
}

}  // namespace
}  // namespace zephlin
