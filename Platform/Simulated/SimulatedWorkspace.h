#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <utility>

#include "Platform/Dispatch.h"
#include "Platform/Simulated/ObserverList.h"
#include "Platform/Workspace.h"

namespace zephlin {

class SimulatedWorkspace final : public Workspace {
 public:
  explicit SimulatedWorkspace(std::shared_ptr<MainQueue> mainQueue)
      : mainQueue_(std::move(mainQueue)) {}

  std::unique_ptr<Observation> observeDidWake(std::function<void()> callback) override;

  /// Tells the observers through the main queue.
  void announceDidWake();
  [[nodiscard]] std::size_t wakeObservers() const { return didWake_.count(); }

 private:
  std::shared_ptr<MainQueue> mainQueue_;
  ObserverList<> didWake_;
};

}  // namespace zephlin
