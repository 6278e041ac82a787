// The JSON arguments of hidutil: whatever they are, they are read or refused in one short line,
// and what was read is the same after the way to the service.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "KeyboardService/Protocol/Errors.h"
#include "KeyboardService/Protocol/Messages.h"
#include "Tests/Fuzz/KeyboardService/Require.h"

namespace zephlin {
namespace {

void requireRoundTrip(const Request& request) {
  const std::string line = encode(request);
  require(line.find('\n') == std::string::npos, "a request is one line");
  require(decodeRequest(line) == request, "a request survives the way to the service");
}

void requireFitForATerminal(const RequestError& error) {
  const std::string_view text = error.what();
  require(printable(text) == text, "an error is one short line of printable text");
}

template <typename Parse>
void check(const Parse& parse) {
  try {
    requireRoundTrip(parse());
  } catch (const RequestError& error) {
    requireFitForATerminal(error);
  }
}

}  // namespace
}  // namespace zephlin

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace zephlin;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  check([&] { return Request(ListRequest{parseMatching(text)}); });
  check([&] { return Request(SetRequest{{}, parseProperties(text)}); });
  check([&] { return Request(PullRequest{parseRegistryID(text)}); });
  check([&] {
    requirePropertyKey(text);
    return Request(GetRequest{{}, std::string(text)});
  });
  return 0;
}
