// Whatever hidutil prints, the parser returns rows that its text accounts for.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "ZephlinCore/HidUtilOutputParser.h"
#include "ZephlinCore/Utf8.h"

namespace {

void require(bool condition) {
  if (!condition) {
    std::abort();
  }
}

/// The row as a line that gives it again.
std::string lineOf(const zephlin::HidPropertyRow& row) {
  return row.registryID + " key " + (row.value ? std::to_string(*row.value) : "(null)") + "\n";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  static_cast<void>(zephlin::isValidUtf8(text));

  const auto rows = zephlin::HidUtilOutputParser::parse(text);
  const auto lineFeeds = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
  require(rows.size() <= lineFeeds + 1);
  std::string again;
  for (const zephlin::HidPropertyRow& row : rows) {
    require(!row.registryID.empty() && row.registryID != "RegistryID");
    require(row.registryID.find(' ') == std::string::npos);
    require(text.find(row.registryID) != std::string_view::npos);
    again += lineOf(row);
  }
  require(zephlin::HidUtilOutputParser::parse(again) == rows);
  return 0;
}
