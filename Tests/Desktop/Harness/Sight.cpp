#include "Tests/Desktop/Harness/Sight.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>

namespace zephlin::test {
namespace {

int distance(QRgb one, QRgb other) {
  return std::max({std::abs(qRed(one) - qRed(other)), std::abs(qGreen(one) - qGreen(other)),
                   std::abs(qBlue(one) - qBlue(other))});
}

/// Relative to white, of an sRGB colour.
double luminance(QRgb colour) {
  const auto linear = [](int channel) {
    const double part = channel / 255.0;
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(qRed(colour)) + 0.7152 * linear(qGreen(colour)) +
         0.0722 * linear(qBlue(colour));
}

/// Not zero for each pixel that differs visibly; shadows hardly do.
QImage differences(const QImage& before, const QImage& after) {
  constexpr int visible = 24;
  QImage mask(before.size(), QImage::Format_Grayscale8);
  for (int y = 0; y < before.height(); ++y) {
    const auto* const left = reinterpret_cast<const QRgb*>(before.constScanLine(y));
    const auto* const right = reinterpret_cast<const QRgb*>(after.constScanLine(y));
    uchar* const differs = mask.scanLine(y);
    for (int x = 0; x < before.width(); ++x) {
      differs[x] = left[x] != right[x] && distance(left[x], right[x]) > visible ? 1 : 0;
    }
  }
  return mask;
}

/// A set of pixels that touch each other.
struct Part {
  QRect place;
  int size = 0;
};

/// Takes the part with this pixel out of the mask.
Part takePart(QImage& mask, const QPoint& first) {
  Part part;
  std::vector<QPoint> open{first};
  mask.scanLine(first.y())[first.x()] = 0;
  while (!open.empty()) {
    const QPoint point = open.back();
    open.pop_back();
    part.place |= QRect(point, QSize(1, 1));
    ++part.size;
    for (const QPoint step : {QPoint(1, 0), QPoint(-1, 0), QPoint(0, 1), QPoint(0, -1)}) {
      const QPoint next = point + step;
      if (mask.rect().contains(next) && mask.scanLine(next.y())[next.x()] != 0) {
        mask.scanLine(next.y())[next.x()] = 0;
        open.push_back(next);
      }
    }
  }
  return part;
}

QRgb groundOf(const QImage& picture) {
  std::map<QRgb, int> counts;
  for (int y = 0; y < picture.height(); ++y) {
    for (int x = 0; x < picture.width(); ++x) {
      ++counts[picture.pixel(x, y)];
    }
  }
  const auto most = std::max_element(
      counts.begin(), counts.end(),
      [](const auto& one, const auto& other) { return one.second < other.second; });
  return most->first;
}

}  // namespace

double contrastOf(const QImage& picture) {
  const double ground = luminance(picture.pixel(0, 0));
  double contrast = 1;
  for (int y = 0; y < picture.height(); ++y) {
    for (int x = 0; x < picture.width(); ++x) {
      constexpr double glare = 0.05;
      const double other = luminance(picture.pixel(x, y));
      contrast =
          std::max(contrast, (std::max(ground, other) + glare) / (std::min(ground, other) + glare));
    }
  }
  return contrast;
}

QRect largestChange(const QImage& before, const QImage& after) {
  QImage mask = differences(before, after);
  Part largest;
  for (int y = 0; y < mask.height(); ++y) {
    const uchar* const line = mask.constScanLine(y);
    for (int x = 0; x < mask.width(); ++x) {
      if (line[x] != 0) {
        const Part part = takePart(mask, QPoint(x, y));
        largest = part.size > largest.size ? part : largest;
      }
    }
  }
  return largest.place;
}

std::vector<QRect> rowsOfText(const QImage& picture) {
  constexpr int legible = 40;
  constexpr int frame = 24;  // With round corners.
  constexpr int smallestText = 5;
  const QRgb ground = groundOf(picture);
  const QRect inside = picture.rect().adjusted(frame, 0, -frame, 0);
  std::vector<QRect> rows;
  QRect row;
  for (int y = 0; y < picture.height(); ++y) {
    QRect line;
    for (int x = inside.left(); x <= inside.right(); ++x) {
      if (distance(picture.pixel(x, y), ground) > legible) {
        line |= QRect(x, y, 1, 1);
      }
    }
    if (!line.isNull()) {
      row |= line;
    } else {
      if (row.height() >= smallestText) {
        rows.push_back(row);
      }
      row = QRect();
    }
  }
  return rows;
}

}  // namespace zephlin::test
