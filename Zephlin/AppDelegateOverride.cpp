// AppDelegate, the override: when it is applied, verified, retried and restored.

#include <utility>

#include "Zephlin/AppDelegate.h"

namespace zephlin {

namespace {

using Status = CapsLockEngine::Status;

constexpr const char* enabledKey = "instantCapsLockEnabled";
constexpr const char* lastApplyOKKey = "lastApplyOK";
constexpr const char* lastApplyDateKey = "lastApplyDate";

constexpr std::int64_t maximumRetries = 3;
constexpr std::chrono::seconds retryDelay{3};

/// A read that fails is an absent status, and is not reported.
std::optional<Status> readStatus(const CapsLockEngine& engine) {
  try {
    return engine.status();
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

}  // namespace

bool AppDelegate::isEnabled() const {
  return defaults_.boolean(enabledKey).value_or(true);
}

void AppDelegate::setEnabled(bool enabled) {
  defaults_.setBoolean(enabledKey, enabled);
  refreshUI();
  if (enabled) {
    applyIfEnabled(false);
  } else {
    queueEngineCall(&CapsLockEngine::restoreDefault,
                    "Zephlin: failed to restore default: ", &AppDelegate::finishRestore);
  }
}

void AppDelegate::applyIfEnabled(bool isRetry) {
  if (!isEnabled()) {
    return;
  }
  if (!isRetry) {
    retryAttempts_ = 0;
  }
  queueEngineCall(&CapsLockEngine::applyInstant,
                  "Zephlin: failed to apply override: ", &AppDelegate::finishApply);
}

// The work may outlive the delegate and the platform, so it holds neither: only the engine, which
// is a value, and the two parts of the platform that may be kept. The delegate is never owned on
// the work queue, so it is never destroyed there.
void AppDelegate::queueEngineCall(void (CapsLockEngine::*call)() const, const char* failureMessage,
                                  Finish finish) {
  workQueue_->post([weak = weak_from_this(), log = platform_.systemLog(),
                    mainQueue = platform_.dispatch().mainQueue(), engine = engine_, call,
                    failureMessage, finish] {
    if (weak.expired()) {
      return;
    }
    EngineResult result;
    try {
      (engine.*call)();
    } catch (const std::exception& error) {
      log->log(failureMessage + localizedDescription(error));
      result.failed = true;
    }
    result.status = readStatus(engine);
    mainQueue->post([weak, finish, result] {
      if (const auto self = weak.lock()) {
        ((*self).*finish)(result);
      }
    });
  });
}

void AppDelegate::finishApply(const EngineResult& result) {
  // Switched off meanwhile: the restore behind this in the queue reports its own result.
  if (!isEnabled()) {
    return;
  }
  const bool isConfirmed = result.status && result.status->isInstant();
  recordResult(result, !result.failed && isConfirmed);
  if (!isConfirmed && retryAttempts_ < maximumRetries) {
    ++retryAttempts_;
    scheduleRetry();
  }
  refreshUI();
}

void AppDelegate::finishRestore(const EngineResult& result) {
  // Unlike for an apply, an absent status counts as success for a restore.
  const bool isStillInstant = result.status && result.status->instantServices != 0;
  recordResult(result, !result.failed && !isStillInstant);
  refreshUI();
}

void AppDelegate::recordResult(const EngineResult& result, bool isOK) {
  lastApplyFailed_ = result.failed;
  cachedStatus_ = result.status;
  defaults_.setBoolean(lastApplyOKKey, isOK);
  defaults_.setDouble(lastApplyDateKey, platform_.clock().now().time_since_epoch().count());
}

void AppDelegate::scheduleRetry() {
  platform_.dispatch().mainQueue()->postAfter(retryDelay, [weak = weak_from_this()] {
    if (const auto self = weak.lock()) {
      self->applyIfEnabled(true);
    }
  });
}

void AppDelegate::refreshStatusAsync(std::function<void()> completion) {
  workQueue_->post([weak = weak_from_this(), mainQueue = platform_.dispatch().mainQueue(),
                    engine = engine_, completion = std::move(completion)] {
    if (weak.expired()) {
      return;
    }
    mainQueue->post([weak, completion, status = readStatus(engine)] {
      if (const auto self = weak.lock()) {
        self->cachedStatus_ = status;
        self->refreshUI();
        if (completion) {
          completion();
        }
      }
    });
  });
}

void AppDelegate::applicationShouldReportStatus(
    std::function<void(const std::string& status)> report) {
  refreshStatusAsync([this, report = std::move(report)] { report(statusDescription()); });
}

std::string AppDelegate::statusDescription() const {
  if (!isEnabled()) {
    return "Off, using your Mac's normal delay";
  }
  if (lastApplyFailed_) {
    return "Couldn't turn on. Check Input Monitoring permission";
  }
  if (!cachedStatus_) {
    return "Checking…";
  }
  if (cachedStatus_->isPartial()) {
    return "Turning on…";
  }
  if (cachedStatus_->instantServices >= 1) {
    return "On. Every tap registers instantly";
  }
  return "Couldn't confirm. Try Re-apply Now";
}

}  // namespace zephlin
