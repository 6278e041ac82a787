#pragma once

#include <QDBusConnection>
#include <functional>
#include <memory>

#include "Platform/Workspace.h"

namespace zephlin {

/// The machine has woken when logind says that it no longer prepares for sleep (the signal
/// PrepareForSleep(false) on the system bus, org.freedesktop.login1(5)). logind may start later;
/// without a system bus nothing is ever reported.
class LogindWorkspace final : public Workspace {
 public:
  /// Connects to the system bus.
  LogindWorkspace();
  LogindWorkspace(const LogindWorkspace&) = delete;
  LogindWorkspace& operator=(const LogindWorkspace&) = delete;
  ~LogindWorkspace() override;

  std::unique_ptr<Observation> observeDidWake(std::function<void()> callback) override;

 private:
  QDBusConnection systemBus_;
};

}  // namespace zephlin
