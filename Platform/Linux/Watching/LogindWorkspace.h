#pragma once

#include <QDBusConnection>
#include <QObject>
#include <functional>
#include <memory>
#include <optional>

#include "Platform/Workspace.h"

namespace zephlin {

/// The machine has woken when logind announces it (the signal PrepareForSleep(false) on the system
/// bus, org.freedesktop.login1(5)). logind may start later; without a system bus nothing is ever
/// reported.
///
/// Connecting to the system bus takes several round trips, so it waits for the event loop's next
/// turn: at launch the status item comes first. The clocks reveal a sleep before that.
class LogindWorkspace final : public Workspace {
 public:
  LogindWorkspace() = default;
  LogindWorkspace(const LogindWorkspace&) = delete;
  LogindWorkspace& operator=(const LogindWorkspace&) = delete;
  ~LogindWorkspace() override;

  std::unique_ptr<Observation> observeDidWake(std::function<void()> callback) override;

 private:
  /// Connects on first use.
  const QDBusConnection& systemBus();

  std::optional<QDBusConnection> systemBus_;
  // Destroyed first: what is still queued does not run.
  QObject context_;
};

}  // namespace zephlin
