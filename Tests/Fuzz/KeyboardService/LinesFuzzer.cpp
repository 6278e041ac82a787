// The line splitter: what it yields does not depend on the pieces in which the bytes come. The
// first byte of the input is the limit of a line, the second the size of the pieces.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "KeyboardService/Protocol/Transport.h"
#include "Tests/Fuzz/KeyboardService/Require.h"

namespace zephlin {
namespace {

struct Result {
  std::vector<std::string> lines;
  LineSplitter::State state = LineSplitter::State::NeedsBytes;
  bool partial = false;
  bool operator==(const Result&) const = default;
};

Result split(std::string_view bytes, std::size_t limit, std::size_t pieceSize) {
  LineSplitter splitter(limit);
  Result result;
  do {
    const std::string_view piece = bytes.substr(0, pieceSize);
    bytes.remove_prefix(piece.size());
    splitter.append(piece);
    while (splitter.state() == LineSplitter::State::HasLine) {
      result.lines.push_back(splitter.takeLine());
      require(result.lines.back().size() <= limit, "a line keeps to the limit");
    }
  } while (!bytes.empty());
  result.state = splitter.state();
  result.partial = splitter.hasPartialLine();
  return result;
}

/// What the lines and the rest are by definition, for inputs where no line is too long.
void requireAllBytes(const Result& result, std::string_view bytes) {
  std::size_t length = 0;
  for (const std::string& line : result.lines) {
    require(bytes.substr(length, line.size()) == line, "a line has its bytes");
    length += line.size();
    require(bytes.substr(length, 1) == "\n", "a line ends at a line feed");
    ++length;
  }
  require(
      result.partial == (length < bytes.size()) || result.state == LineSplitter::State::LineTooLong,
      "what follows the last line feed is a partial line");
}

}  // namespace
}  // namespace zephlin

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace zephlin;
  if (size < 2) {
    return 0;
  }
  const std::string_view bytes(reinterpret_cast<const char*>(data + 2), size - 2);
  const std::size_t limit = data[0];
  const std::size_t pieceSize = std::max<std::size_t>(data[1], 1);
  const Result whole = split(bytes, limit, bytes.size() + 1);
  require(split(bytes, limit, pieceSize) == whole, "pieces make no difference");
  require(split(bytes, limit, 1) == whole, "single bytes make no difference");
  requireAllBytes(whole, bytes);
  return 0;
}
