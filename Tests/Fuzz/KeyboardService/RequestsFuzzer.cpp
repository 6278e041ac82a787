// A conversation of request lines with keyboards that come, go and refuse. A line that begins with
// '+', '-' or '#' plugs, pulls or turns the mood of a keyboard whose number is its second byte; one
// that begins with '!' is asked by a user who may change nothing.

#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string_view>

#include "KeyboardService/Service/RequestHandler.h"
#include "Tests/Fuzz/KeyboardService/Require.h"

namespace zephlin {
namespace {

constexpr uid_t owner = 0;
constexpr uid_t stranger = 1;
constexpr std::size_t realKeyboards = 8;

/// Keyboards that carry their properties by themselves, so that they can be held against what the
/// registry says.
class MoodyBus final : public KeyboardBus {
 public:
  void start(KeyboardBusObserver& observer) override { observer_ = &observer; }

  void applyProperties(BusHandle handle, const PropertySet& properties) override {
    require(carried.contains(handle), "only keyboards that are there are changed");
    require(properties.size() <= maximumPropertiesOfAKeyboard, "a keyboard holds so many");
    if (refusing.contains(handle)) {
      throw RequestError("not in the mood");
    }
    carried[handle] = properties;
  }

  void plug(BusHandle handle) {
    if (carried.emplace(handle, PropertySet{}).second) {
      observer_->keyboardAppeared(*this, handle, {1, 6, 3, 4, "Moody", "USB"});
    }
  }

  void pull(BusHandle handle) {
    if (carried.erase(handle) > 0) {
      observer_->keyboardDisappeared(*this, handle);
    }
  }

  void turnMood(BusHandle handle) {
    if (refusing.erase(handle) == 0) {
      refusing.insert(handle);
    }
  }

  std::map<BusHandle, PropertySet> carried;
  std::set<BusHandle> refusing;

 private:
  KeyboardBusObserver* observer_ = nullptr;
};

class Conversation {
 public:
  Conversation()
      : registry_([](const std::string&) {}),
        virtualKeyboards_(2),
        permissions_(owner, [](uid_t) { return false; }),
        handler_(registry_, virtualKeyboards_, permissions_, [](const std::string&) {}) {
    virtualKeyboards_.start(registry_);
    bus_.start(registry_);
    bus_.plug(BusHandle{0});
    bus_.plug(BusHandle{1});
  }

  void take(std::string_view line) {
    const char first = line.empty() ? ' ' : line.front();
    const BusHandle handle{line.size() < 2 ? 0
                                           : static_cast<std::uint8_t>(line[1]) % realKeyboards};
    if (first == '+') {
      bus_.plug(handle);
    } else if (first == '-') {
      bus_.pull(handle);
    } else if (first == '#') {
      bus_.turnMood(handle);
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
  MoodyBus bus_;
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
