#include "Platform/Simulated/SimulatedLoginService.h"

#include <stdexcept>

namespace zephlin {

void SimulatedLoginService::registerMainApp() {
  ++registrations_;
  if (needsApproval_) {
    status_ = LoginServiceStatus::RequiresApproval;
  }
  throwIfFailing();
  if (!needsApproval_) {
    status_ = LoginServiceStatus::Enabled;
  }
}

void SimulatedLoginService::unregisterMainApp() {
  ++unregistrations_;
  throwIfFailing();
  status_ = LoginServiceStatus::NotRegistered;
}

void SimulatedLoginService::throwIfFailing() const {
  if (failure_) {
    throw std::runtime_error(*failure_);
  }
}

}  // namespace zephlin
