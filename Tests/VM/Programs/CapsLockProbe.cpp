// Finds out what the kernel makes of Caps Lock, whatever any program says about it. Each line of
// the standard input is answered by a line:
//
//   light     opens all keyboards and lights their Caps Lock LEDs; "lit"
//   verdict   what has come of Caps Lock since then: "instant" if a press and, though the key is
//             still down, its release; "plain" if a press; "silent" if nothing. Makes the LEDs dark
//             and closes the keyboards.
//
// The key is pressed before "verdict" and released after it.

#include <fcntl.h>
#include <linux/input.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include "Base/FileDescriptor.h"
#include "Tests/VM/CapsLockLed.h"

namespace zephlin {
namespace {

using namespace std::chrono_literals;

/// Enough for an LED to go through a clone to its keyboard.
constexpr auto timeForLeds = 50ms;

/// Enough for a press to come through USB, a clone and the gap before its early release.
constexpr auto timeForPress = 150ms;

/// A keyboard's node as any program opens it.
class Node {
 public:
  explicit Node(const std::string& path)
      : descriptor_(::open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC)) {}

  [[nodiscard]] bool hasCapsLock() const {
    std::array<unsigned char, KEY_CNT / 8> keys{};
    return ::ioctl(descriptor_.get(), EVIOCGBIT(EV_KEY, keys.size()), keys.data()) >= 0 &&
           (keys[KEY_CAPSLOCK / 8] >> (KEY_CAPSLOCK % 8) & 1) != 0;
  }

  void setLed(bool lit) { setCapsLockLed(descriptor_.get(), lit); }

  /// The values of Caps Lock that have come, such as "10" for a press and a release.
  std::string takeCapsLock() {
    std::string values;
    input_event event{};
    while (::read(descriptor_.get(), &event, sizeof event) == sizeof event) {
      if (event.type == EV_KEY && event.code == KEY_CAPSLOCK && event.value != 2) {
        values += std::to_string(event.value);
      }
    }
    return values;
  }

 private:
  FileDescriptor descriptor_;
};

void setLeds(std::vector<Node>& nodes, bool lit) {
  for (Node& node : nodes) {
    node.setLed(lit);
  }
  std::this_thread::sleep_for(timeForLeds);
}

std::vector<Node> lightKeyboards() {
  std::vector<Node> nodes;
  for (int number = 0; number < 100; ++number) {
    Node node("/dev/input/event" + std::to_string(number));
    if (node.hasCapsLock()) {
      nodes.push_back(std::move(node));
    }
  }
  setLeds(nodes, true);
  for (Node& node : nodes) {
    node.takeCapsLock();
  }
  return nodes;
}

std::string verdict(std::vector<Node>& nodes) {
  std::this_thread::sleep_for(timeForPress);
  std::string verdict = "silent";
  for (Node& node : nodes) {
    const std::string values = node.takeCapsLock();
    if (!values.empty()) {
      verdict = values == "1" ? "plain" : values == "10" ? "instant" : "wrong: " + values;
    }
  }
  return verdict;
}

void answer() {
  std::vector<Node> nodes;
  std::string line;
  while (std::getline(std::cin, line)) {
    if (line == "light") {
      nodes = lightKeyboards();
      std::cout << "lit" << std::endl;
    } else {
      std::cout << verdict(nodes) << std::endl;
      setLeds(nodes, false);
      nodes.clear();
    }
  }
}

}  // namespace
}  // namespace zephlin

int main() {
  zephlin::answer();
}
