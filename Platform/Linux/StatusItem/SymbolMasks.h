#pragma once

#include <array>
#include <span>

namespace zephlin {

/// How opaque each pixel of a square symbol is, row by row.
struct SymbolMask {
  const char* iconName;
  int size;
  std::span<const unsigned char> opacities;
};

/// The sizes of symbols in panels, without and with a scale of 2.
inline constexpr std::array symbolMaskSizes{22, 44};

/// Each symbol in each size. Drawn while the program is built (DrawSymbolMasks.cpp), as every panel
/// reads them: Qt's SVG renderer would take a megabyte, and 2 ms of the start. Any thread.
std::span<const SymbolMask> symbolMasks();

}  // namespace zephlin
