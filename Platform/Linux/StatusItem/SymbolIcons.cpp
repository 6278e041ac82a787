#include "Platform/Linux/StatusItem/SymbolIcons.h"

#include <QIconEngine>
#include <QImageReader>
#include <QPainter>
#include <QPixmap>
#include <QStandardPaths>
#include <algorithm>
#include <array>
#include <utility>

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

/// An icon that a panel loads by its name. Its pictures are empty, so that nothing is drawn: Qt
/// would send them along, and the panel does not use them.
class NamedIconEngine final : public QIconEngine {
 public:
  explicit NamedIconEngine(QString name) : name_(std::move(name)) {}

  void paint(QPainter* /*painter*/, const QRect& /*rect*/, QIcon::Mode /*mode*/,
             QIcon::State /*state*/) override {}
  QPixmap pixmap(const QSize& /*size*/, QIcon::Mode /*mode*/, QIcon::State /*state*/) override {
    return {};
  }
  QString iconName() override { return name_; }
  bool isNull() override { return false; }
  [[nodiscard]] QIconEngine* clone() const override { return new NamedIconEngine(name_); }

 private:
  QString name_;
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

QIcon namedIcon(const QString& iconName) {
  return QIcon(new NamedIconEngine(iconName));
}

QIcon drawnIcon(const QString& iconName, const QColor& colour) {
  registerResources();
  QIcon icon;
  for (const int size : {16, 22, 24, 32, 48, 64, 128}) {
    icon.addPixmap(draw(iconName, size, colour));
  }
  return icon;
}

QColor contrastingColour() {
  return {0x78, 0x78, 0x78};
}

}  // namespace zephlin
