#pragma once

#include <QImage>
#include <QRect>
#include <vector>

namespace zephlin::test {

/// The contrast ratio (WCAG 2) of the most different pixel to the one in the corner, from 1 to 21.
/// Symbols need 3.
double contrastOf(const QImage& picture);

/// The rectangle around the largest coherent part that two pictures of the same size do not have in
/// common; empty if they look the same.
QRect largestChange(const QImage& before, const QImage& after);

/// The rectangles around rows of text on a plain ground, from top to bottom. Lines and frames do
/// not count.
std::vector<QRect> rowsOfText(const QImage& picture);

}  // namespace zephlin::test
