#include "Platform/Linux/Watching/ServiceSubscription.h"

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include "KeyboardService/Protocol/Errors.h"

namespace zephlin {

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds firstDelay = 100ms;
constexpr std::chrono::milliseconds maximumDelay = 60s;
constexpr int maximumRetries = 10;

}  // namespace

ServiceSubscription::ServiceSubscription(std::string socketPath, std::function<void()> appeared)
    : socketPath_(std::move(socketPath)),
      appeared_(std::move(appeared)),
      socketFile_(socketPath_, [this] { connectLater(); }) {
  retryTimer_.setSingleShot(true);
  QObject::connect(&retryTimer_, &QTimer::timeout, [this] { connect(); });
  connect();
  isNewService_ = !connection_;
}

void ServiceSubscription::connect() {
  try {
    connection_ = std::make_unique<ServiceConnection>(socketPath_,
                                                      [this](ServiceNews news) { handle(news); });
  } catch (const std::system_error& error) {
    // A file that nobody listens at (yet) may not change when somebody does.
    if (error.code() == std::errc::connection_refused ||
        error.code() == std::errc::resource_unavailable_try_again) {
      connectionFailed();
    }
  } catch (const RequestError&) {
    // Nobody will ever listen at such a path.
  }
}

void ServiceSubscription::handle(ServiceNews news) {
  if (news == ServiceNews::Ended) {
    isNewService_ = true;
    connection_.reset();
    connectionFailed();
    return;
  }
  if (news == ServiceNews::Appeared || isNewService_) {
    appeared_.call();
  }
}

void ServiceSubscription::connectionFailed() {
  forgetOldFailures();
  sinceFailure_.start();
  if (++failures_ <= maximumRetries) {
    connectLater();
  }
}

void ServiceSubscription::connectLater() {
  if (connection_ || retryTimer_.isActive()) {
    return;
  }
  forgetOldFailures();
  retryTimer_.start(delay());
}

void ServiceSubscription::forgetOldFailures() {
  if (sinceFailure_.isValid() && sinceFailure_.hasExpired(maximumDelay / 1ms)) {
    failures_ = 0;
  }
}

std::chrono::milliseconds ServiceSubscription::delay() const {
  if (failures_ == 0) {
    return 0ms;
  }
  return std::min(maximumDelay, firstDelay * (1 << (std::min(failures_, maximumRetries) - 1)));
}

}  // namespace zephlin
