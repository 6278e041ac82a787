#include "Platform/Linux/StatusItem/SymbolIcons.h"

#include <QImageReader>
#include <QPainter>
#include <QPixmap>
#include <QStandardPaths>
#include <algorithm>
#include <array>

#include "Platform/Linux/StatusItem/SymbolMasks.h"

// Q_INIT_RESOURCE registers a static library's resources, and must not be in a namespace.
static void registerResources() {
  Q_INIT_RESOURCE(SymbolIcons);
}

namespace zephlin {

namespace {

struct Symbol {
  const char* name;
  const char* iconName;
};

constexpr std::array symbols{
    Symbol{"capslock", "zephlin-capslock-symbolic"},
    Symbol{"capslock.fill", "zephlin-capslock-fill-symbolic"},
    Symbol{"exclamationmark.triangle", "zephlin-warning-symbolic"},
};

/// Loads Qt's plugin for SVG when it is first needed.
QPixmap draw(const QString& iconName, int size, const QColor& colour) {
  QImageReader reader(QLatin1String(":/zephlin/icons/") + iconName + QLatin1String(".svg"));
  reader.setScaledSize(QSize(size, size));
  QPixmap pixmap = QPixmap::fromImageReader(&reader);
  QPainter painter(&pixmap);
  painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
  painter.fillRect(pixmap.rect(), colour);
  return pixmap;
}

}  // namespace

std::optional<QString> iconNameOf(const std::string& symbol) {
  const auto* const found =
      std::find_if(symbols.begin(), symbols.end(),
                   [&symbol](const auto& known) { return symbol == known.name; });
  if (found == symbols.end()) {
    return std::nullopt;
  }
  return QLatin1String(found->iconName);
}

bool isInstalledIcon(const QString& iconName) {
  return !QStandardPaths::locate(
              QStandardPaths::GenericDataLocation,
              QLatin1String("icons/hicolor/scalable/status/") + iconName + QLatin1String(".svg"))
              .isEmpty();
}

QIcon drawnIcon(const QString& iconName, const QColor& colour) {
  registerResources();
  QIcon icon;
  for (const int size : {16, 22, 24, 32, 48, 64, 128}) {
    icon.addPixmap(draw(iconName, size, colour));
  }
  return icon;
}

QByteArray symbolPicture(const std::optional<QString>& iconName, int size) {
  const auto masks = symbolMasks();
  const auto mask = std::find_if(masks.begin(), masks.end(), [&](const SymbolMask& each) {
    return each.size == size && iconName == QLatin1String(each.iconName);
  });
  constexpr int bytesPerPixel = 4;
  if (mask == masks.end()) {
    return {size * size * bytesPerPixel, '\0'};
  }
  const QColor colour = contrastingColour();
  QByteArray pixels;
  for (const unsigned char opacity : mask->opacities) {
    for (const int component :
         {static_cast<int>(opacity), colour.red(), colour.green(), colour.blue()}) {
      pixels.append(static_cast<char>(component));
    }
  }
  return pixels;
}

QColor contrastingColour() {
  return {0x80, 0x80, 0x80};
}

}  // namespace zephlin
