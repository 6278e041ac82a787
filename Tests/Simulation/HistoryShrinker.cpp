#include <algorithm>
#include <iterator>
#include <utility>

#include "Tests/Simulation/History.h"

namespace zephlin {

namespace {

History without(const History& history, std::size_t begin, std::size_t count) {
  History rest(history.begin(), std::next(history.begin(), static_cast<std::ptrdiff_t>(begin)));
  const std::size_t end = std::min(begin + count, history.size());
  rest.insert(rest.end(), std::next(history.begin(), static_cast<std::ptrdiff_t>(end)),
              history.end());
  return rest;
}

/// Leaves out what it can, in pieces of this size, from the end on, where most is superfluous.
void dropPieces(History& history, std::size_t size,
                const std::function<bool(const History&)>& fails) {
  const std::size_t pieces = (history.size() + size - 1) / size;
  for (std::size_t piece = pieces; piece-- > 0;) {
    History candidate = without(history, piece * size, size);
    if (fails(candidate)) {
      history = std::move(candidate);
    }
  }
}

/// Leaves out runs of so few events wherever they begin: a menu's opening and the click in it go
/// together, or two clicks that undo each other.
bool dropNeighbours(History& history, const std::function<bool(const History&)>& fails) {
  constexpr std::size_t maximumNeighbours = 6;
  bool dropped = false;
  for (std::size_t count = maximumNeighbours; count > 0; --count) {
    for (std::size_t begin = history.size(); begin-- > 0;) {
      History candidate = without(history, begin, count);
      if (fails(candidate)) {
        history = std::move(candidate);
        begin = std::min(begin, history.size());
        dropped = true;
      }
    }
  }
  return dropped;
}

}  // namespace

History shrinkHistory(History history, const std::function<bool(const History&)>& fails) {
  for (std::size_t size = history.size(); size > 1; size = (size + 1) / 2) {
    dropPieces(history, size, fails);
    if (size == 2) {
      break;
    }
  }
  while (dropNeighbours(history, fails)) {
  }
  return history;
}

}  // namespace zephlin
