#include "Platform/Simulated/SimulatedWorkspace.h"

#include <utility>

namespace zephlin {

std::unique_ptr<Observation> SimulatedWorkspace::observeDidWake(std::function<void()> callback) {
  return didWake_.add(std::move(callback));
}

void SimulatedWorkspace::announceDidWake() {
  mainQueue_->post(didWake_.notification());
}

}  // namespace zephlin
