#include "Platform/Simulated/SimulatedAlerts.h"

#include <stdexcept>

namespace zephlin {

namespace {

/// Counts an alert among the modal ones for as long as it lives.
class ModalSession {
 public:
  explicit ModalSession(SimulatedTracking& tracking) : tracking_(tracking) {
    ++tracking_.modalAlerts;
  }
  ModalSession(const ModalSession&) = delete;
  ModalSession& operator=(const ModalSession&) = delete;
  ~ModalSession() { --tracking_.modalAlerts; }

 private:
  SimulatedTracking& tracking_;
};

}  // namespace

void SimulatedAlerts::runModal(const Alert& alert) {
  constexpr VirtualTicks longest = 86'400 * virtualTicksPerSecond;
  const ModalSession session(tracking_);
  shown_.push_back(alert);
  if (onShown) {
    onShown();
  }
  const VirtualTicks end = loop_.now() + longest;
  while (dismissed_ == 0) {
    if (loop_.now() > end || !loop_.step()) {
      throw std::logic_error("nobody dismisses the alert");
    }
  }
  --dismissed_;
}

void SimulatedAlerts::dismissAlert() {
  if (dismissed_ < tracking_.modalAlerts) {
    ++dismissed_;
  }
}

void SimulatedAlerts::dismissAlertAfter(double seconds) {
  loop_.schedule(loop_.now() + ticksFromSeconds(seconds), VirtualLoop::Lane::Main,
                 [this] { dismissAlert(); });
}

}  // namespace zephlin
