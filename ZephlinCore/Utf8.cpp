#include "ZephlinCore/Utf8.h"

#include <cstddef>

namespace zephlin {

namespace {

/// What may follow a lead byte (The Unicode Standard, table 3-7): the number of continuation bytes
/// and the range of the first one; the others lie within 80..BF.
struct Sequence {
  std::size_t continuationBytes;
  unsigned char firstLow;
  unsigned char firstHigh;
};

constexpr Sequence invalid{0, 1, 0};

Sequence sequenceAfter(unsigned char lead) {
  if (lead < 0xC2) {
    return invalid;
  }
  if (lead < 0xE0) {
    return {1, 0x80, 0xBF};
  }
  if (lead < 0xF0) {
    return {2, static_cast<unsigned char>(lead == 0xE0 ? 0xA0 : 0x80),
            static_cast<unsigned char>(lead == 0xED ? 0x9F : 0xBF)};
  }
  if (lead < 0xF5) {
    return {3, static_cast<unsigned char>(lead == 0xF0 ? 0x90 : 0x80),
            static_cast<unsigned char>(lead == 0xF4 ? 0x8F : 0xBF)};
  }
  return invalid;
}

}  // namespace

bool isValidUtf8(std::string_view bytes) {
  const auto at = [bytes](std::size_t index) { return static_cast<unsigned char>(bytes[index]); };
  std::size_t index = 0;
  while (index < bytes.size()) {
    const unsigned char lead = at(index++);
    if (lead < 0x80) {
      continue;
    }
    const Sequence sequence = sequenceAfter(lead);
    if (sequence.continuationBytes == 0 || bytes.size() - index < sequence.continuationBytes ||
        at(index) < sequence.firstLow || at(index) > sequence.firstHigh) {
      return false;
    }
    for (std::size_t further = 1; further < sequence.continuationBytes; ++further) {
      if ((at(index + further) & 0xC0) != 0x80) {
        return false;
      }
    }
    index += sequence.continuationBytes;
  }
  return true;
}

}  // namespace zephlin
