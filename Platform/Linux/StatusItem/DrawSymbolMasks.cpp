// Prints C++ that defines symbolMasks(): DrawSymbolMasks SYMBOL.svg…

#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QString>
#include <QStringList>
#include <QSvgRenderer>
#include <QTextStream>
#include <cstdlib>

#include "Platform/Linux/StatusItem/SymbolMasks.h"

namespace {

QImage draw(QSvgRenderer& renderer, int size) {
  QImage image(size, size, QImage::Format_ARGB32);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  renderer.render(&painter);
  return image;
}

}  // namespace

int main(int argc, char* argv[]) {
  QTextStream output(stdout);
  output << "#include \"Platform/Linux/StatusItem/SymbolMasks.h\"\n\nnamespace zephlin {\n\n";
  QStringList masks;
  for (int argument = 1; argument < argc; ++argument) {
    const QString file = QString::fromLocal8Bit(argv[argument]);
    QSvgRenderer renderer(file);
    if (!renderer.isValid()) {
      return EXIT_FAILURE;
    }
    for (const int size : zephlin::symbolMaskSizes) {
      const QString name = QStringLiteral("mask%1").arg(masks.size());
      masks += QStringLiteral("{\"%1\", %2, %3}")
                   .arg(QFileInfo(file).completeBaseName())
                   .arg(size)
                   .arg(name);
      output << "static constexpr unsigned char " << name << "[] = {";
      const QImage image = draw(renderer, size);
      for (int pixel = 0; pixel < size * size; ++pixel) {
        output << qAlpha(image.pixel(pixel % size, pixel / size)) << ',';
      }
      output << "};\n";
    }
  }
  output << "static constexpr SymbolMask masks[] = {" << masks.join(',') << "};\n\n"
         << "std::span<const SymbolMask> symbolMasks() {\n  return masks;\n}\n\n"
         << "}  // namespace zephlin\n";
}
