#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

#include "Platform/Dispatch.h"
#include "Platform/Simulated/ObserverList.h"
#include "Platform/Workspace.h"

namespace zephlin {

class SimulatedWorkspace final : public Workspace {
 public:
  explicit SimulatedWorkspace(MainQueue& mainQueue) : mainQueue_(mainQueue) {}

  std::unique_ptr<Observation> observeDidWake(std::function<void()> callback) override;

  /// Tells the observers through the main queue.
  void announceDidWake();
  [[nodiscard]] std::size_t wakeObservers() const { return didWake_.count(); }

 private:
  struct NoRecord {};
  MainQueue& mainQueue_;
  ObserverList<NoRecord> didWake_;
};

}  // namespace zephlin
