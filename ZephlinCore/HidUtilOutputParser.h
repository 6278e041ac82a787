#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zephlin {

/// One keyboard service in a property listing of hidutil.
struct HidPropertyRow {
  /// The first column, verbatim; opaque, never read as a number.
  std::string registryID;
  /// Absent if the tool printed a null marker.
  std::optional<std::int64_t> value;

  bool operator==(const HidPropertyRow&) const = default;
};

/// Reads what `hidutil property --get KEY` prints.
namespace HidUtilOutputParser {

/// The rows of the listing, in its order. Lenient: a line that cannot be read is dropped, and
/// nothing but std::bad_alloc is thrown. Linear in the size of `text`. Any thread.
///
/// A line ends at a line feed, unless a carriage return precedes it: in the text model this format
/// comes from, the two are one character, so text with CR LF ends is a single line.
std::vector<HidPropertyRow> parse(std::string_view text);

}  // namespace HidUtilOutputParser

}  // namespace zephlin
