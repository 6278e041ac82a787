#pragma once

namespace zephlin {

/// Whether a menu is open or an alert is modal, which holds input back.
struct SimulatedTracking {
  bool menuIsOpen = false;
  int modalAlerts = 0;
  [[nodiscard]] bool holdsInputBack() const { return menuIsOpen || modalAlerts > 0; }
};

}  // namespace zephlin
