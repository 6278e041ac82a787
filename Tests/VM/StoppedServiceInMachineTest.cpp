#include <algorithm>
#include <cctype>
#include <random>
#include <set>
#include <sstream>
#include <utility>
#include <vector>

#include "Tests/VM/TypedMachine.h"

namespace zephlin {
namespace {

constexpr unsigned seeds = 6;

/// What the virtual keyboard remembers.
constexpr std::size_t maximumEvents = 16;

/// From when the virtual keyboard is given its events until it has sent them all, about.
constexpr unsigned timeOfTyping = 130'000;  // Microseconds.

struct KeyEvent {
  std::string key;
  bool isDown = false;
};

/// Letters and Caps Lock, an even number of times, with up to three keys down at once.
std::vector<KeyEvent> randomTyping(std::mt19937& random) {
  const std::string letters = "abcdefgh";
  std::vector<KeyEvent> events;
  std::vector<std::string> down;
  const auto release = [&](std::size_t index) {
    events.push_back({down[index], false});
    down.erase(down.begin() + static_cast<std::ptrdiff_t>(index));
  };
  const auto press = [&](const std::string& key) {
    events.push_back({key, true});
    down.push_back(key);
  };
  int capsLocks = 0;
  while (events.size() + down.size() + 4 < maximumEvents) {
    const std::string key =
        random() % 3 == 0 ? "caps_lock" : std::string(1, letters[random() % letters.size()]);
    const auto held = std::find(down.begin(), down.end(), key);
    if (held != down.end()) {
      release(static_cast<std::size_t>(held - down.begin()));
    } else if (down.size() == 3) {
      release(random() % down.size());
    } else {
      press(key);
      capsLocks += key == "caps_lock" ? 1 : 0;
    }
  }
  while (!down.empty()) {
    release(0);
  }
  if (capsLocks % 2 != 0) {
    press("caps_lock");
    release(0);
  }
  return events;
}

/// The letters of it.
std::string lettersOf(const std::vector<KeyEvent>& events) {
  std::string letters;
  for (const KeyEvent& event : events) {
    letters += event.isDown && event.key.size() == 1 ? event.key : "";
  }
  return letters;
}

std::string lowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char each) { return static_cast<char>(std::tolower(each)); });
  return text;
}

/// The service is stopped or killed while somebody types.
class StoppedServiceInMachine : public TypedMachine {
 protected:
  /// Types and has the service sent a signal meanwhile.
  std::vector<KeyEvent> typeWhile(const std::string& signal, std::mt19937& random) {
    const std::vector<KeyEvent> events = randomTyping(random);
    machine().output("{ usleep " + std::to_string(random() % timeOfTyping) + "; kill -" + signal +
                     " $service; } & killer=$!");
    for (const KeyEvent& event : events) {
      event.isDown ? machine().press(0, event.key) : machine().release(0, event.key);
    }
    machine().output("wait $killer");
    return events;
  }

  void startAgain(const std::string& state) {
    machine().run("wait $service; rm -f /run/zephlin/hidd.sock");
    startService();
    waitForStates(1, state);
  }

  /// The keys that the judge has seen pressed and not released.
  static std::string keysDown() {
    std::istringstream log(machine().output("cut -d ' ' -f 2- /tmp/judge.log"));
    std::set<std::pair<std::string, std::string>> down;
    std::string line;
    while (std::getline(log, line)) {
      std::istringstream words(line);
      std::string what;
      std::string node;
      std::string key;
      int value = 0;
      words >> what >> node >> key >> value;
      if (what == "-") {
        std::erase_if(down, [&](const auto& each) { return each.first == node; });
      } else if (what == "key" && value == 1) {
        down.emplace(node, key);
      } else if (what == "key") {
        down.erase({node, key});
      }
    }
    std::string keys;
    for (const auto& [node, key] : down) {
      keys += node + ' ' + key + '\n';
    }
    return keys;
  }

  static bool isLocked() {
    return machine().run("grep ' lock ' /tmp/judge.log | tail -n 1 | grep -q '1$'").status == 0;
  }

  void unlock() {
    if (isLocked()) {
      tap(0, "caps_lock");
      waitForLed(0, false);
    }
  }
};

TEST_F(StoppedServiceInMachine, StoppedItCostsAWatchedKeyboardNothingButItsEarlyRelease) {
  apply();
  for (unsigned seed = 1; seed <= seeds; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::vector<KeyEvent> typed;
    const std::string text = textOf(0, [&] { typed = typeWhile("STOP", random); });
    EXPECT_EQ(lowerCase(text), lettersOf(typed));
    EXPECT_EQ(keysDown(), "");
    EXPECT_FALSE(isLocked());
    EXPECT_EQ(typeHello(0), "HEe");
    machine().output("kill -CONT $service");
    EXPECT_EQ(typeHello(0), "Hee");
    ASSERT_FALSE(HasFailure());
  }
}

TEST_F(StoppedServiceInMachine, KilledItCostsAWatchedKeyboardNothingButItsEarlyRelease) {
  apply();
  for (unsigned seed = 1; seed <= seeds; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::vector<KeyEvent> typed;
    const std::string text = textOf(0, [&] { typed = typeWhile("KILL", random); });
    EXPECT_EQ(lowerCase(text), lettersOf(typed));
    EXPECT_EQ(keysDown(), "");
    EXPECT_FALSE(isLocked());
    EXPECT_EQ(typeHello(0), "HEe");
    startAgain("watched");
    EXPECT_EQ(typeHello(0), "Hee");
    ASSERT_FALSE(HasFailure());
  }
}

TEST_F(StoppedServiceInMachine, StoppedItDelaysTheKeysOfAGrabbedKeyboard) {
  setDelay(1);
  waitForStates(1, "grabbed");
  for (unsigned seed = 1; seed <= seeds; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::vector<KeyEvent> typed;
    const std::string text = textOf(0, [&] {
      typed = typeWhile("STOP", random);
      machine().output("kill -CONT $service");
    });
    EXPECT_EQ(lowerCase(text), lettersOf(typed));
    EXPECT_EQ(keysDown(), "");
    unlock();  // The emulated bus may deliver a tap that is too short to count.
    ASSERT_FALSE(HasFailure());
  }
}

TEST_F(StoppedServiceInMachine, KilledItLeavesAGrabbedKeyboardWorking) {
  setDelay(1);
  waitForStates(1, "grabbed");
  for (unsigned seed = 1; seed <= seeds; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    typeWhile("KILL", random);
    machine().run("wait $service");  // Until it has let go, keys go nowhere.
    finishTyping(0);
    EXPECT_EQ(keysDown(), "");
    unlock();
    EXPECT_EQ(typeHello(0), "HEe");
    startAgain("grabbed");
    ASSERT_FALSE(HasFailure());
  }
}

}  // namespace
}  // namespace zephlin
