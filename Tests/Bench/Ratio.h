#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <vector>

namespace zephlin::bench {

/// Prints the name, then the median and the quartiles of the values with their unit.
inline void report(const char* name, std::vector<double> values, const char* unit) {
  std::sort(values.begin(), values.end());
  const auto quantile = [&values](double part) {
    return values[static_cast<std::size_t>(part * static_cast<double>(values.size() - 1))];
  };
  std::fprintf(stderr, "  %-34s %9.3f %-4s (quartiles %.3f to %.3f)\n", name, quantile(0.5), unit,
               quantile(0.25), quantile(0.75));
}

/// Prints the ratios subject[i] / yardstick[i]. The two were measured in turn, so a change in the
/// machine's speed affects both alike.
inline void reportRatio(const char* name, const std::vector<double>& subject,
                        const std::vector<double>& yardstick) {
  std::vector<double> ratios(subject.size());
  std::transform(subject.begin(), subject.end(), yardstick.begin(), ratios.begin(),
                 [](double left, double right) { return left / right; });
  report(name, ratios, "x");
}

}  // namespace zephlin::bench
