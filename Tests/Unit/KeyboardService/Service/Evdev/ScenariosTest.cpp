#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "Tests/Unit/KeyboardService/Service/Evdev/ScenarioRunner.h"

namespace zephlin {
namespace {

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
