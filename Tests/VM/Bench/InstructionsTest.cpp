#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "Tests/VM/Bench/InstructionMachine.h"

namespace zephlin {
namespace {

constexpr int keys = 500;
constexpr int taps = 5;
constexpr double millisecond = 1e6;

class Instructions : public testing::Test {
 protected:
  static void SetUpTestSuite() { machine_.emplace(); }
  static void TearDownTestSuite() { machine_.reset(); }

  static nlohmann::json measure(const std::string& way) {
    return machine_->measure(way, keys, taps, 0);
  }

  /// What a way adds to an ordinary key of the same keyboard.
  static double added(const nlohmann::json& figures) {
    return figures.at("key10").get<double>() - figures.at("alone10").get<double>();
  }

 private:
  static inline std::optional<InstructionMachine> machine_;
};

TEST_F(Instructions, AWatchedKeyboardCostsNothingAndUnlocksAtThePress) {
  const auto watched = measure("watched");
  EXPECT_EQ(watched.at("keyWakeUps"), 0);
  EXPECT_LE(added(watched), 0.01 * watched.at("alone10").get<double>()) << watched;
  EXPECT_LE(watched.at("unlocking100"), 1.5 * millisecond) << watched;
}

TEST_F(Instructions, AGrabbedKeyboardCostsLittleMoreThanPassingKeysOn) {
  const auto grabbed = measure("grabbed");
  const auto floor = measure("floor");
  EXPECT_LE(added(grabbed), 1.3 * added(floor)) << grabbed << floor;
}

}  // namespace
}  // namespace zephlin
