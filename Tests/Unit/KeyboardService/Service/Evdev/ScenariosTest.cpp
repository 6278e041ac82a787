#include <gtest/gtest.h>
#include <libevdev/libevdev.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

#include "KeyboardService/Service/Evdev/CapsLockRewriter.h"

namespace zephlin {
namespace {

using std::chrono::duration_cast;
using std::chrono::milliseconds;
using Events = CapsLockRewriter::Events;

constexpr const char* keyVerbs[] = {"release", "press", "repeat"};

std::string keyName(std::uint16_t code) {
  return libevdev_event_code_get_name(EV_KEY, code);
}

std::uint16_t keyCode(const std::string& name) {
  const int code = libevdev_event_code_from_name(EV_KEY, name.c_str());
  if (code < 0) {
    throw std::runtime_error("no key " + name);
  }
  return static_cast<std::uint16_t>(code);
}

std::string describe(const InputEvent& event) {
  if (event.type != EV_KEY) {
    throw std::runtime_error("an event that scenarios do not have");
  }
  return keyVerbs[event.value] + (' ' + keyName(event.code));
}

InputEvent readEvent(std::istream& words) {
  std::string verb;
  std::string object;
  words >> verb;
  if (verb == "dropped") {
    return {EV_SYN, SYN_DROPPED, 0};
  }
  words >> object;
  for (int value = KeyReleased; value <= KeyRepeated; ++value) {
    if (verb == keyVerbs[value]) {
      return {EV_KEY, keyCode(object), value};
    }
  }
  throw std::runtime_error("no event " + verb);
}

Events readFrame(std::istream& words) {
  Events frame;
  std::string separator;
  do {
    frame.push_back(readEvent(words));
  } while (words >> separator && separator != "...");
  if (separator == "...") {
    return frame;
  }
  if (!endsFrame(frame.back())) {
    frame.push_back(endOfFrame);
  }
  return frame;
}

class Scenario {
 public:
  void play(const std::string& line) {
    std::istringstream words(line);
    std::string first;
    words >> first;
    if (line.starts_with("  >")) {
      return;
    }
    if (first == "rule") {
      print(line);
      readRule(words);
    } else if (first == "led") {
      print(line);
      words >> first;
      rewriter_.setLed(first == "on");
    } else if (first == "release") {
      print(line);
      printFrames(rewriter_.releaseAll());
    } else if (first.empty() || first.starts_with('#')) {
      print(line);
    } else {
      const milliseconds time(std::stoi(first));
      advanceTo(time - milliseconds(1));
      print(line);
      takeFrame(readFrame(words), time);
    }
  }

  std::string finish() {
    advanceTo(now_ + milliseconds(100'000));
    return std::move(text_);
  }

 private:
  void print(const std::string& line) { text_ += line + '\n'; }

  void readRule(std::istream& words) {
    std::string hold;
    std::string gap;
    words >> hold >> gap;
    rewriter_.setRule({milliseconds(std::stoi(hold.substr(hold.find('=') + 1))),
                       milliseconds(std::stoi(gap.substr(gap.find('=') + 1)))});
  }

  void takeFrame(const Events& frame, milliseconds time) {
    now_ = time;
    for (const InputEvent& event : frame) {
      printFrames(rewriter_.take(event, time, time));
    }
  }

  void advanceTo(milliseconds time) {
    while (rewriter_.deadline() && *rewriter_.deadline() <= time) {
      now_ = duration_cast<milliseconds>(*rewriter_.deadline());
      printFrames(rewriter_.expire(now_));
    }
  }

  void printFrames(const Events& events) {
    std::string frame;
    for (const InputEvent& event : events) {
      if (endsFrame(event)) {
        frame += event.code == SYN_DROPPED ? " + dropped" : "";
        print("  > " + std::to_string(now_.count()) + ' ' + frame);
        frame.clear();
      } else {
        frame += (frame.empty() ? "" : " + ") + describe(event);
      }
    }
    if (!frame.empty()) {
      print("  > unfinished: " + frame);
    }
  }

  CapsLockRewriter rewriter_{CapsLockRule{milliseconds(0), milliseconds(5)}};
  milliseconds now_{0};
  std::string text_;
};

/// Plays a scenario and returns it with what really comes out: the lines that begin with "  >" are
/// results, all others are kept. A scenario that describes the rewriter rightly comes back as it
/// was.
///
///   # a comment
///   rule hold=0 gap=5                      milliseconds; in force for later presses
///   led on                                 the LED of Caps Lock, which is off at first
///   10 press KEY_A + press KEY_CAPSLOCK    at 10 ms a frame; "press", "release", "repeat" a key
///   20 press KEY_A + dropped               the frame ends with SYN_DROPPED
///   30 press KEY_B ...                     the frame is not finished yet
///   release all
///     > 10 press KEY_A                     what comes out, and when: one line for each frame
///
/// Deadlines are kept to the millisecond. Throws std::runtime_error if a line is not understood.
std::string playScenario(const std::string& scenario) {
  Scenario play;
  std::istringstream lines(scenario);
  std::string line;
  while (std::getline(lines, line)) {
    play.play(line);
  }
  return play.finish();
}

std::vector<std::filesystem::path> scenarioFiles() {
  const std::filesystem::directory_iterator files(SCENARIOS_FOLDER);
  std::vector<std::filesystem::path> paths(begin(files), end(files));
  std::sort(paths.begin(), paths.end());
  return paths;
}

std::string nameOf(const testing::TestParamInfo<std::filesystem::path>& info) {
  std::string name = info.param.stem().string();
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
}

class CapsLockScenarios : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(CapsLockScenarios, ComesOutAsWritten) {
  std::ifstream file(GetParam());
  const std::string scenario{std::istreambuf_iterator<char>(file), {}};
  ASSERT_NE(scenario.find("  >"), std::string::npos) << GetParam();
  EXPECT_EQ(playScenario(scenario), scenario);
}

INSTANTIATE_TEST_SUITE_P(Files, CapsLockScenarios, testing::ValuesIn(scenarioFiles()), nameOf);

TEST(CapsLockScenarios, AWrongResultIsSeen) {
  EXPECT_EQ(playScenario("1 press KEY_A\n  > 2 press KEY_B\n"),
            "1 press KEY_A\n  > 1 press KEY_A\n");
}

}  // namespace
}  // namespace zephlin
