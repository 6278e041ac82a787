#include <gtest/gtest.h>

#include <QFile>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <algorithm>
#include <cmath>

#include "Platform/Linux/StatusItem/QtStatusBar.h"
#include "Platform/Linux/StatusItem/SymbolIcons.h"

namespace zephlin::test {
namespace {

constexpr int panelSizes[] = {16, 22, 24, 32};
const QColor green(0, 255, 0);

QImage drawn(const std::string& symbol, int size) {
  const QIcon icon = drawnIcon(iconNameOf(symbol).value(), green);
  return icon.pixmap(size, size).toImage().convertToFormat(QImage::Format_ARGB32);
}

/// How much of the picture's area is painted, from 0 to 1.
double coverage(const QImage& image) {
  double painted = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      painted += qAlpha(image.pixel(x, y)) / 255.0;
    }
  }
  return painted / (image.width() * image.height());
}

/// WCAG 2.1's relative luminance.
double luminance(const QColor& colour) {
  const auto linear = [](double component) {
    return component <= 0.03928 ? component / 12.92 : std::pow((component + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
         0.0722 * linear(colour.blueF());
}

double contrast(const QColor& one, const QColor& other) {
  const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
  return (lighter + 0.05) / (darker + 0.05);
}

/// Black, white, and the panels of Breeze, Adwaita and waybar's own style, dark and light.
const QColor panels[] = {"#000000", "#202020", "#2a2e32", "#2d2d2d", "#2b303b", "#333333",
                         "#e4e4e4", "#eff0f1", "#ebebeb", "#f6f5f4", "#ffffff"};

/// At parts of the width and height.
bool isPainted(const QImage& image, double x, double y) {
  return qAlpha(image.pixel(static_cast<int>(x * image.width()),
                            static_cast<int>(y * image.height()))) > 127;
}

TEST(SymbolIcons, EverySymbolIsDrawnInEachSizeOfAPanel) {
  for (const char* symbol : {"capslock", "capslock.fill", "exclamationmark.triangle"}) {
    for (const int size : panelSizes) {
      const QImage image = drawn(symbol, size);
      ASSERT_EQ(image.size(), QSize(size, size)) << symbol;
      EXPECT_GT(coverage(image), 0.1) << symbol << size;
      EXPECT_LT(coverage(image), 0.6) << symbol << size;
    }
  }
}

TEST(SymbolIcons, TheFilledArrowDiffersFromTheOutlinedOneByWhatIsInside) {
  for (const int size : panelSizes) {
    const QImage outlined = drawn("capslock", size);
    const QImage filled = drawn("capslock.fill", size);
    EXPECT_FALSE(isPainted(outlined, 0.5, 0.35)) << size;
    EXPECT_TRUE(isPainted(filled, 0.5, 0.35)) << size;
    EXPECT_GT(coverage(filled), coverage(outlined) + 0.1) << size;
    for (const QImage& image : {outlined, filled}) {
      EXPECT_TRUE(isPainted(image, 0.5, 0.87)) << "the bar under the arrow, " << size;
      EXPECT_FALSE(isPainted(image, 0.5, 0.74)) << "the gap above it, " << size;
    }
  }
}

TEST(SymbolIcons, TheWarningIsATriangleRoundAnExclamationMark) {
  for (const int size : panelSizes) {
    const QImage image = drawn("exclamationmark.triangle", size);
    EXPECT_TRUE(isPainted(image, 0.5, 0.45)) << size;
    EXPECT_FALSE(isPainted(image, 0.35, 0.7)) << size;
    EXPECT_TRUE(isPainted(image, 0.5, 0.9)) << size;
    EXPECT_FALSE(isPainted(image, 0.1, 0.1)) << size;
  }
}

TEST(SymbolIcons, DrawnIconsHaveTheColourThatIsAskedFor) {
  const QImage image = drawn("capslock.fill", 32);
  EXPECT_EQ(QColor(image.pixel(16, 12)), green);
}

TEST(SymbolIcons, ThePicturesForPanelsAreLegibleOnLightAndDarkPanels) {
  for (const char* symbol : {"capslock", "capslock.fill", "exclamationmark.triangle"}) {
    for (const int size : {22, 44}) {
      const QByteArray pixels = symbolPicture(iconNameOf(symbol), size);
      ASSERT_EQ(pixels.size(), size * size * 4) << symbol;
      double painted = 0;
      for (qsizetype pixel = 0; pixel < pixels.size(); pixel += 4) {
        const auto component = [&](int index) {
          return static_cast<unsigned char>(pixels[pixel + index]);
        };
        painted += component(0) / 255.0;
        for (const QColor& panel : panels) {
          ASSERT_GE(contrast(QColor(component(1), component(2), component(3)), panel), 3)
              << panel.name().toStdString();
        }
      }
      EXPECT_NEAR(painted / (size * size), coverage(drawn(symbol, size)), 0.01) << symbol << size;
    }
  }
}

TEST(SymbolIcons, ThePictureWithoutASymbolIsTransparent) {
  EXPECT_EQ(symbolPicture(std::nullopt, 22), QByteArray(22 * 22 * 4, '\0'));
}

TEST(SymbolIcons, TheFilesAreLegibleInPanelsThatDoNotRecolourThem) {
  for (const char* symbol : {"capslock", "capslock.fill", "exclamationmark.triangle"}) {
    QSvgRenderer renderer(QStringLiteral(ICONS "/%1.svg").arg(iconNameOf(symbol).value()));
    QImage image(64, 64, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter);
    const QColor colour = image.pixelColor(32, 57);
    EXPECT_EQ(colour.alpha(), 255) << symbol;
    for (const QColor& panel : panels) {
      EXPECT_GE(contrast(colour, panel), 3) << symbol << panel.name().toStdString();
    }
  }
}

TEST(SymbolIcons, PanelsOfBothKindsFindWhatTheyRecolour) {
  for (const char* symbol : {"capslock", "capslock.fill", "exclamationmark.triangle"}) {
    QFile file(QStringLiteral(ICONS "/%1.svg").arg(iconNameOf(symbol).value()));
    ASSERT_TRUE(file.open(QFile::ReadOnly)) << symbol;
    const std::string text = file.readAll().toStdString();
    EXPECT_NE(text.find("class=\"ColorScheme-Text\" fill=\"currentColor\""), std::string::npos);
    EXPECT_NE(text.find("viewBox=\"0 0 16 16\""), std::string::npos);
    EXPECT_EQ(text.find("stroke"), std::string::npos) << "GTK recolours no strokes";
  }
}

TEST(SymbolIcons, TheApplicationHasAnIconInColour) {
  QSvgRenderer renderer(QStringLiteral(ICONS "/com.quorvenel.zephlin.svg"));
  ASSERT_TRUE(renderer.isValid());
  EXPECT_EQ(renderer.defaultSize(), QSize(128, 128));
}

TEST(SymbolIcons, AnUnknownSymbolHasNoIcon) {
  EXPECT_FALSE(iconNameOf("capslock.slash"));
}

TEST(QtStatusBarTest, KnowsExactlyTheSymbolsThatHaveAnIcon) {
  QtStatusBar bar([] { return false; }, [](bool) {});
  EXPECT_EQ(bar.systemSymbol("capslock", "Zephlin"), (SymbolImage{"capslock", "Zephlin", false}));
  EXPECT_FALSE(bar.systemSymbol("", "Zephlin"));
  EXPECT_FALSE(bar.systemSymbol("zephlin-capslock-symbolic", "Zephlin"));
}

TEST(QtStatusBarTest, AnItemHasNoButtonWithoutADisplay) {
  QtStatusBar bar([] { return false; }, [](bool) {});
  const auto item = bar.makeStatusItem();
  EXPECT_FALSE(item->hasButton());
  item->setButtonImage(bar.systemSymbol("capslock", "Zephlin"));
  item->setButtonToolTip("text");
  item->setMenu(std::make_shared<Menu>());
}

}  // namespace
}  // namespace zephlin::test
