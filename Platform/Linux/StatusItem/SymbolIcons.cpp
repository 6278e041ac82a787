#include "Platform/Linux/StatusItem/SymbolIcons.h"

#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>
#include <algorithm>
#include <array>

// Not in a namespace, as Q_INIT_RESOURCE demands; a static library's resources are not there
// without.
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

QPixmap draw(QSvgRenderer& renderer, int size, const QColor& colour) {
  QPixmap pixmap(size, size);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  renderer.render(&painter);
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

QIcon themeIcon(const QString& iconName) {
  return QIcon::hasThemeIcon(iconName) ? QIcon::fromTheme(iconName) : QIcon();
}

QIcon drawnIcon(const QString& iconName, const QColor& colour) {
  registerResources();
  QSvgRenderer renderer(QLatin1String(":/zephlin/icons/") + iconName + QLatin1String(".svg"));
  QIcon icon;
  for (const int size : {16, 22, 24, 32, 48, 64, 128}) {
    icon.addPixmap(draw(renderer, size, colour));
  }
  return icon;
}

QColor contrastingColour() {
  return {0x78, 0x78, 0x78};
}

}  // namespace zephlin
