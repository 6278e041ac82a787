// A conversation of request lines with keyboards that come, go and refuse. A line that begins with
// '+', '-' or '#' plugs, pulls or turns the mood of a keyboard whose number is its second byte; one
// that begins with '!' is asked by a user who may change nothing.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "KeyboardService/Service/RequestHandler.h"
#include "Tests/Fuzz/KeyboardService/Require.h"
#include "Tests/Unit/KeyboardService/Support/FakeKeyboardBus.h"

namespace zephlin {
namespace {

constexpr uid_t owner = 0;
constexpr uid_t stranger = 1;
constexpr std::size_t realKeyboards = 8;

class Conversation {
 public:
  Conversation()
      : registry_([](const std::string&) {}),
        virtualKeyboards_(2),
        permissions_(owner, [](uid_t) { return false; }),
        handler_(registry_, virtualKeyboards_, permissions_, [](const std::string&) {}) {
    virtualKeyboards_.start(registry_);
    bus_.start(registry_);
    bus_.plug(BusHandle{0}, "Moody");
    bus_.plug(BusHandle{1}, "Moody");
  }

  void take(std::string_view line) {
    const char first = line.empty() ? ' ' : line.front();
    const BusHandle handle{line.size() < 2 ? 0
                                           : static_cast<std::uint8_t>(line[1]) % realKeyboards};
    if (first == '+') {
      if (!bus_.carried.contains(handle)) {
        bus_.plug(handle, "Moody");
      }
    } else if (first == '-') {
      bus_.pull(handle);
    } else if (first == '#') {
      if (bus_.refusing.erase(handle) == 0) {
        bus_.refusing.insert(handle);
      }
    } else {
      ask(line, first == '!');
    }
    requireAgreement();
  }

 private:
  void ask(std::string_view line, bool byStranger) {
    line.remove_prefix(byStranger ? 1 : 0);
    const auto keyboards = registry_.list({});
    const auto carried = bus_.carried;
    const std::string text = encode(handler_.respond(line, byStranger ? stranger : owner));
    require(text.find('\n') == std::string::npos, "a response is one line");
    const Response response = decodeResponse(text);
    if (byStranger || std::holds_alternative<ErrorResponse>(response)) {
      require(registry_.list({}) == keyboards, "a refusal leaves the keyboards as they are");
      require(bus_.carried == carried, "a refusal leaves the properties as they are");
    }
  }

  void requireAgreement() {
    require(registry_.size() <= VirtualKeyboardBus::maximumKeyboards + realKeyboards,
            "there are only so many keyboards");
    for (const auto& [handle, properties] : bus_.carried) {
      require(properties.size() <= maximumPropertiesOfAKeyboard, "a keyboard holds so many");
      Matching keyboard;
      keyboard.registryID = registry_.find({&bus_, handle});
      require(keyboard.registryID.has_value(), "the registry knows every keyboard");
      for (const auto& [key, value] : properties) {
        require(registry_.get(keyboard, key).at(0).value == value,
                "the registry says what the keyboard carries");
      }
    }
  }

  KeyboardRegistry registry_;
  VirtualKeyboardBus virtualKeyboards_;
  FakeKeyboardBus bus_;
  Permissions permissions_;
  RequestHandler handler_;
};

}  // namespace
}  // namespace zephlin

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view text(reinterpret_cast<const char*>(data), size);
  zephlin::Conversation conversation;
  while (!text.empty()) {
    const auto end = text.find('\n');
    conversation.take(text.substr(0, end));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  }
  return 0;
}
