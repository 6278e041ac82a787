#include "Tests/Contract/Golden.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <vector>

namespace zephlin::contract {

namespace {

std::string without(std::string text, const std::string& leftOut) {
  for (auto place = text.find(leftOut); !leftOut.empty() && place != std::string::npos;
       place = text.find(leftOut, place)) {
    text.erase(place, leftOut.size());
  }
  return text;
}

std::vector<std::string> linesOf(const std::string& text) {
  std::istringstream in(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) {
    lines.push_back(line);
  }
  return lines;
}

/// The lines between the first and the last that differ, as diff(1) marks them.
std::string difference(const std::string& expected, const std::string& shown) {
  const auto before = linesOf(expected);
  const auto now = linesOf(shown);
  const auto [firstBefore, firstNow] =
      std::mismatch(before.begin(), before.end(), now.begin(), now.end());
  const auto [lastBefore, lastNow] =
      std::mismatch(before.rbegin(), std::make_reverse_iterator(firstBefore), now.rbegin(),
                    std::make_reverse_iterator(firstNow));
  std::string text;
  for (auto line = firstBefore; line != lastBefore.base(); ++line) {
    text += "- " + *line + "\n";
  }
  for (auto line = firstNow; line != lastNow.base(); ++line) {
    text += "+ " + *line + "\n";
  }
  return text;
}

}  // namespace

void expectGolden(const std::string& name, const std::string& text, const std::string& leftOut) {
  const std::string path = std::string(ZEPHLIN_GOLDEN_FOLDER) + "/" + name + ".txt";
  if (std::getenv("ZEPHLIN_RENEW_GOLDEN") != nullptr && leftOut.empty()) {
    std::ofstream(path) << text;
  }
  std::ifstream file(path);
  const std::string expected =
      without({std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()}, leftOut);
  EXPECT_TRUE(expected == text) << difference(expected, text) << "ZEPHLIN_RENEW_GOLDEN=1 renews "
                                << path;
}

}  // namespace zephlin::contract
