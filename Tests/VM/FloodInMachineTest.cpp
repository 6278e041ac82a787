#include <sstream>

#include "Tests/VM/TypedMachine.h"

namespace zephlin {
namespace {

constexpr int secondsQuiet = 10;
constexpr int secondsOfFlood = 60;

/// Milliseconds.
constexpr double maximumMedian = 100;
constexpr double maximumWait = 1000;
constexpr double maximumDelayOfKeys = 2;

/// Of one keyboard, in milliseconds.
struct Lateness {
  double keyMedian = 0;
  double keyWorst = 0;
  double releaseMedian = 0;
  double releaseWorst = 0;
};

std::istream& operator>>(std::istream& input, Lateness& lateness) {
  return input >> lateness.keyMedian >> lateness.keyWorst >> lateness.releaseMedian >>
         lateness.releaseWorst;
}

/// A hostile user against the service as its unit runs it.
class FloodInMachine : public TypedMachine {
 protected:
  static constexpr const char* asItsUnit =
      "prlimit --rttime=2000000:2000000 --rtprio=1:1 su zephlin -c 'exec zephlin-hidd'";

  void SetUp() override {
    machine().run("kill $service $judge; wait $service $judge; judge=; chown zephlin /run/zephlin");
    startService(asItsUnit);
    machine().output(
        "rm -f /tmp/seconds /tmp/lateness; mkfifo /tmp/seconds; KeyLateness </tmp/seconds "
        ">>/tmp/lateness 2>&1 & "
        "lateness=$!; exec 9>/tmp/seconds");
    machine().waitUntil("grep -q made /tmp/lateness; [ $(hidutil list | grep -c Lateness) = 2 ]");
    machine().output("Zephlin apply");
    waitForStates(2, "watched");
    waitForStates(1, "grabbed");
  }

  void TearDown() override {
    machine().run(
        "exec 9>&-; wait $lateness; kill $service; wait $service; chown root /run/zephlin");
    TypedMachine::TearDown();
  }

  /// Types for a while on the keyboard that is watched and on the one that is grabbed.
  static void startTyping(int seconds) {
    machine().output(": >/tmp/lateness; echo " + std::to_string(seconds) + " >&9");
  }

  static std::array<Lateness, 2> latenessOfTyping() {
    machine().waitUntil("[ -s /tmp/lateness ]");
    std::istringstream figures(machine().output("cat /tmp/lateness"));
    std::array<Lateness, 2> keyboards;
    if (!(figures >> keyboards[0] >> keyboards[1])) {
      throw std::runtime_error(figures.str());
    }
    return keyboards;
  }

  /// Milliseconds that the service's main thread, which alone knows of clients, has run.
  static double timeOfClients() {
    return std::stod(machine().output("cut -d ' ' -f 1 /proc/$service/task/$service/schedstat")) /
           1e6;
  }
};

TEST_F(FloodInMachine, MakesNeitherKeysNorOtherUsersWait) {
  startTyping(secondsQuiet);
  machine().output("sleep " + std::to_string(secondsQuiet));
  const auto usual = latenessOfTyping();

  machine().output("ServiceFlood 500 500 >/tmp/flood 2>&1 & flood=$!; sleep 1");
  const double before = timeOfClients();
  startTyping(secondsOfFlood);
  std::istringstream asked(machine().output("AskService " + std::to_string(secondsOfFlood)));
  const auto flooded = latenessOfTyping();
  const double used = timeOfClients() - before;
  machine().run("kill $flood; wait $flood");

  double median = maximumMedian;
  double worst = maximumWait;
  ASSERT_TRUE(asked >> median >> worst) << asked.str();
  EXPECT_LT(median, maximumMedian);
  EXPECT_LT(worst, maximumWait);
  EXPECT_LT(used, secondsOfFlood * 1000 * 0.5);
  for (std::size_t index = 0; index < usual.size(); ++index) {
    SCOPED_TRACE(index == 0 ? "watched" : "grabbed");
    EXPECT_LT(flooded[index].keyWorst - usual[index].keyMedian, maximumDelayOfKeys);
    EXPECT_LT(flooded[index].releaseWorst - usual[index].releaseMedian, maximumDelayOfKeys);
  }
  std::istringstream taken(machine().output("cat /tmp/flood"));
  int connections = 0;
  int drips = 0;
  int answers = 0;
  ASSERT_TRUE(taken >> connections >> drips >> answers) << taken.str();
  EXPECT_GT(connections, 1000);
  EXPECT_GT(drips, 1000);
  EXPECT_GT(answers, 1000);
}

}  // namespace
}  // namespace zephlin
