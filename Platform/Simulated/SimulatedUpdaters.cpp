#include "Platform/Simulated/SimulatedUpdaters.h"

#include <utility>

namespace zephlin {

namespace {

class SimulatedUpdater final : public Updater {
 public:
  explicit SimulatedUpdater(std::shared_ptr<SimulatedUpdaters::Counts> counts)
      : counts_(std::move(counts)) {
    ++counts_->started;
    ++counts_->live;
  }
  SimulatedUpdater(const SimulatedUpdater&) = delete;
  SimulatedUpdater& operator=(const SimulatedUpdater&) = delete;
  ~SimulatedUpdater() override { --counts_->live; }

  void checkForUpdates() override { ++counts_->checks; }

 private:
  std::shared_ptr<SimulatedUpdaters::Counts> counts_;
};

}  // namespace

std::unique_ptr<Updater> SimulatedUpdaters::makeStarted() {
  return std::make_unique<SimulatedUpdater>(counts_);
}

}  // namespace zephlin
