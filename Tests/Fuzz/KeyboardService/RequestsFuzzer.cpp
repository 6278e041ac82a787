// A conversation of request lines with keyboards that come and go. A line that begins with '+' or
// '-' plugs or pulls the keyboard whose number is its second byte. One that begins with '#' has the
// bus refuse or carry everything, or changes the state of that keyboard and of what is set from now
// on. One that begins with '!' is asked by a user who may change nothing.

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

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
      : log_(loop(), [](const std::string&) {}),
        registry_(log_),
        virtualKeyboards_(2),
        handler_(loop(), registry_, virtualKeyboards_,
                 Permissions(owner, [](uid_t) { return Logins{}; }), log_,
                 std::chrono::milliseconds::zero()) {
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
      turnMood(handle);
    } else {
      ask(line, first == '!');
    }
    requireAgreement();
  }

 private:
  /// One for all conversations, as it takes descriptors.
  static EventLoop& loop() {
    static EventLoop theLoop;
    return theLoop;
  }

  void turnMood(BusHandle handle) {
    const auto mood = static_cast<std::uint64_t>(handle) % 4;
    if (mood == 0) {
      bus_.refuses = !bus_.refuses;
      return;
    }
    constexpr KeyboardState::Kind kinds[] = {inForce, notInForce, settling};
    bus_.becomes = KeyboardState{kinds[mood - 1], "moody"};
    if (bus_.carried.contains(handle) && capsLockDelay(bus_.carried.at(handle))) {
      bus_.report(handle, *bus_.becomes);
    }
  }

  std::string answerTo(std::string_view line, uid_t user) {
    std::vector<std::string> answers;
    handler_.respond(line, user,
                     [&](const Response& response) { answers.push_back(encode(response)); });
    while (answers.empty()) {
      sd_event_run(loop().native(), UINT64_MAX);
    }
    require(answers.size() == 1, "a request is answered once");
    return answers.front();
  }

  void ask(std::string_view line, bool byStranger) {
    line.remove_prefix(byStranger ? 1 : 0);
    const auto keyboards = registry_.list({});
    const auto carried = bus_.carried;
    const std::string text = answerTo(line, byStranger ? stranger : owner);
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
        const auto said = registry_.get(keyboard, key).at(0).value;
        require(said == value || (key == capsLockDelayKey && !said),
                "the registry says what the keyboard carries");
      }
    }
  }

  LimitedLog log_;
  KeyboardRegistry registry_;
  VirtualKeyboardBus virtualKeyboards_;
  FakeKeyboardBus bus_;
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
