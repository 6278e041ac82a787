#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "Platform/Linux/Watching/EndableCallback.h"
#include "Platform/Linux/Watching/FileAppearance.h"
#include "Platform/Linux/Watching/ServiceConnection.h"

namespace zephlin {

/// A subscription that follows the keyboard service through its restarts. Calls back each time a
/// keyboard has appeared at the service, and when a service has started since the
/// beginning. Main thread.
///
/// Nothing is polled: after a lost connection it retries a few times at growing intervals, and then
/// when the socket's file is created again.
class ServiceSubscription {
 public:
  ServiceSubscription(std::string socketPath, std::function<void()> appeared);

 private:
  void connect();
  void handle(ServiceNews news);
  void connectionFailed();
  void connectLater();
  void forgetOldFailures();
  [[nodiscard]] std::chrono::milliseconds delay() const;

  std::string socketPath_;
  EndableCallback<> appeared_;
  bool isNewService_ = false;
  int failures_ = 0;
  QElapsedTimer sinceFailure_;
  QTimer retryTimer_;
  std::unique_ptr<ServiceConnection> connection_;
  FileAppearance socketFile_;
};

}  // namespace zephlin
