#pragma once

#include <functional>
#include <vector>

#include "Platform/Simulated/SimulatedTracking.h"
#include "Platform/Simulated/VirtualLoop.h"
#include "Platform/Window.h"

namespace zephlin {

class SimulatedAlerts final : public AlertPresenter {
 public:
  SimulatedAlerts(VirtualLoop& loop, SimulatedTracking& tracking)
      : loop_(loop), tracking_(tracking) {}

  /// Pumps the loop until the alert was dismissed. Throws std::logic_error where no event is left
  /// or a virtual day has passed, since nobody will.
  void runModal(const Alert& alert) override;

  /// Dismisses the innermost alert that is modal. From an event.
  void dismissAlert();
  /// Dismisses whatever alert is modal so long from now. If none is by then, nothing happens.
  void dismissAlertAfter(double seconds);

  [[nodiscard]] bool isModal() const { return tracking_.modalAlerts > 0; }
  /// All that were shown.
  [[nodiscard]] const std::vector<Alert>& shown() const { return shown_; }
  /// Called each time when an alert has become modal.
  std::function<void()> onShown;

 private:
  VirtualLoop& loop_;
  SimulatedTracking& tracking_;
  std::vector<Alert> shown_;
  int dismissed_ = 0;
};

}  // namespace zephlin
