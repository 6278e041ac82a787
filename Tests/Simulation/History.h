#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace zephlin {

/// Something that happens to the desktop, as `@SECONDS ACTION`: `@12.500 plug`.
struct HistoryEvent {
  /// Since the history's beginning.
  std::int64_t milliseconds = 0;
  std::string action;

  bool operator==(const HistoryEvent&) const = default;
};

/// In the order of time.
using History = std::vector<HistoryEvent>;

/// One event a line.
std::string textOf(const History& history);
/// Reads that form; empty lines and those that begin with # are skipped. The events may be in any
/// order. Throws std::invalid_argument with the offending line.
History parseHistory(std::string_view text);

/// A random history, the same for the same arguments: some `days` with an event each minute on
/// average, mostly in bursts.
History generateHistory(std::uint64_t seed, double days);

/// A part of the history that still fails, and of which no single event can be left out. `fails`
/// must hold for the history itself.
History shrinkHistory(History history, const std::function<bool(const History&)>& fails);

}  // namespace zephlin
