#pragma once

#include <cstddef>
#include <memory>

#include "Platform/Services.h"

namespace zephlin {

/// The updaters that were made, and what they were asked for.
class SimulatedUpdaters {
 public:
  std::unique_ptr<Updater> makeStarted();

  [[nodiscard]] std::size_t started() const { return counts_->started; }
  [[nodiscard]] std::size_t live() const { return counts_->live; }
  [[nodiscard]] std::size_t checks() const { return counts_->checks; }

  struct Counts {
    std::size_t started = 0;
    std::size_t live = 0;
    std::size_t checks = 0;
  };

 private:
  std::shared_ptr<Counts> counts_ = std::make_shared<Counts>();
};

}  // namespace zephlin
