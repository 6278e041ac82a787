#include "Platform/Linux/Windows/ColorPalette.h"

namespace zephlin {

namespace {

QColor black(double alpha) {
  return QColor::fromRgbF(0, 0, 0, static_cast<float>(alpha));
}

QColor white(double alpha) {
  return QColor::fromRgbF(1, 1, 1, static_cast<float>(alpha));
}

QColor lightColor(ColorRole role) {
  switch (role) {
    case ColorRole::Label:
      return black(0.88);
    case ColorRole::SecondaryLabel:
      return black(0.62);
    case ColorRole::TertiaryLabel:
      return black(0.52);
    case ColorRole::Separator:
      return black(0.10);
    case ColorRole::ControlBackground:
      return white(0.85);
    case ColorRole::SystemGreen:
      return {0x0e, 0x6e, 0x2e};
    case ColorRole::SystemRed:
      return {0xb8, 0x1a, 0x24};
    case ColorRole::SystemOrange:
      return {0xa4, 0x4e, 0x00};
  }
  return {};
}

QColor darkColor(ColorRole role) {
  switch (role) {
    case ColorRole::Label:
      return white(0.92);
    case ColorRole::SecondaryLabel:
      return white(0.66);
    case ColorRole::TertiaryLabel:
      return white(0.50);
    case ColorRole::Separator:
      return white(0.12);
    case ColorRole::ControlBackground:
      return white(0.06);
    case ColorRole::SystemGreen:
      return {0x4f, 0xd6, 0x78};
    case ColorRole::SystemRed:
      return {0xff, 0x97, 0x8f};
    case ColorRole::SystemOrange:
      return {0xff, 0xad, 0x52};
  }
  return {};
}

}  // namespace

Appearance appearanceOf(const QPalette& palette) {
  return palette.color(QPalette::Window).lightnessF() < 0.5F ? Appearance::Dark : Appearance::Light;
}

QColor resolve(const Color& color, Appearance appearance) {
  QColor resolved = appearance == Appearance::Dark ? darkColor(color.role) : lightColor(color.role);
  resolved.setAlphaF(resolved.alphaF() * static_cast<float>(color.alpha));
  return resolved;
}

}  // namespace zephlin
