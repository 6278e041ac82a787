#include "Tests/Simulation/History.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <sstream>
#include <stdexcept>

namespace zephlin {

namespace {

HistoryEvent parseLine(const std::string& line) {
  std::istringstream words(line);
  char at = 0;
  double seconds = 0;
  HistoryEvent event;
  if (!(words >> at >> seconds) || at != '@' || seconds < 0 ||
      !std::getline(words >> std::ws, event.action)) {
    throw std::invalid_argument("no event: " + line);
  }
  event.milliseconds = std::llround(seconds * 1000);
  return event;
}

std::string textOf(const HistoryEvent& event) {
  char time[32];
  std::snprintf(time, sizeof time, "@%lld.%03lld ",
                static_cast<long long>(event.milliseconds / 1000),
                static_cast<long long>(event.milliseconds % 1000));
  return time + event.action + "\n";
}

}  // namespace

std::string textOf(const History& history) {
  std::string text;
  for (const HistoryEvent& event : history) {
    text += textOf(event);
  }
  return text;
}

History parseHistory(std::string_view text) {
  History history;
  std::istringstream lines{std::string(text)};
  for (std::string line; std::getline(lines, line);) {
    if (!line.empty() && line.front() != '#') {
      history.push_back(parseLine(line));
    }
  }
  std::stable_sort(history.begin(), history.end(), [](const auto& one, const auto& other) {
    return one.milliseconds < other.milliseconds;
  });
  return history;
}

}  // namespace zephlin
