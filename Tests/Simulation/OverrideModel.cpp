#include "Tests/Simulation/OverrideModel.h"

#include <algorithm>
#include <utility>

#include "ZephlinCore/HidUtilOutputParser.h"

namespace zephlin {

namespace {

constexpr int maximumRetries = 3;
constexpr double retrySeconds = 3;
constexpr double reconcileSeconds = 300;

bool isText(const std::string& output) {
  // All that is not ASCII here is not UTF-8 either.
  return std::all_of(output.begin(), output.end(),
                     [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

OverrideModel::Counts countsOf(const std::string& output) {
  OverrideModel::Counts counts;
  if (!isText(output)) {
    return counts;
  }
  for (const HidPropertyRow& row : HidUtilOutputParser::parse(output)) {
    const std::int64_t value = row.value.value_or(-1);
    ++(value == 0 ? counts.instant : value < 0 || value == 75 ? counts.normal : counts.other);
  }
  return counts;
}

bool hasFailed(const ChildProcessResult* result) {
  return result == nullptr || result->timedOut || result->terminationStatus != 0;
}

std::string describe(const HidutilCall& call) {
  if (call.kind == HidutilCallKind::Set) {
    return "set " + std::to_string(call.value.value_or(0));
  }
  return call.kind == HidutilCallKind::Get ? "get" : "unknown arguments";
}

}  // namespace

void OverrideModel::launch() {
  isAlive_ = true;
  lastApplyFailed_ = false;
  retryAttempts_ = 0;
  status_.reset();
  reconcileNominal_ = now_ + ticksFromSeconds(reconcileSeconds);
  reconcile_ = reconcileNominal_ + lateness_;
  if (isEnabled_) {
    request();
  } else {
    jobs_.push_back(Job::Read);
  }
}

void OverrideModel::destroy() {
  isAlive_ = false;
  jobs_.clear();
  deadlines_.clear();
  debounced_.reset();
  reconcile_.reset();
  if (running_) {
    running_->isOrphan = true;
  }
}

void OverrideModel::deviceAppeared() {
  if (isAlive_) {
    debounced_ = inSeconds(1);
  }
}

void OverrideModel::woke() {
  if (isAlive_) {
    debounced_ = inSeconds(2);
    deadlines_.push_back({inSeconds(10), false});
  }
}

void OverrideModel::setEnabled(bool enabled) {
  isEnabled_ = enabled;
  if (enabled) {
    request();
  } else {
    jobs_.push_back(Job::Restore);
  }
}

void OverrideModel::menuOpened() {
  jobs_.push_back(Job::Read);
}

void OverrideModel::request() {
  if (isEnabled_) {
    retryAttempts_ = 0;
    jobs_.push_back(Job::Apply);
  }
}

void OverrideModel::advanceTo(VirtualTicks now) {
  now_ = now;
  if (debounced_ && *debounced_ <= now) {
    debounced_.reset();
    request();
  }
  while (reconcile_ && *reconcile_ <= now) {
    reconcileNominal_ += ticksFromSeconds(reconcileSeconds);
    reconcile_ = reconcileNominal_ + lateness_;
    request();
  }
  std::vector<Deadline> due;
  std::erase_if(deadlines_, [&](const Deadline& deadline) {
    const bool isDue = deadline.time <= now;
    if (isDue) {
      due.push_back(deadline);
    }
    return isDue;
  });
  for (const Deadline& deadline : due) {
    if (!deadline.isRetry) {
      request();
    } else if (isEnabled_) {
      jobs_.push_back(Job::Apply);
    }
  }
}

std::string OverrideModel::callStarted(const HidutilCall& call) {
  if (running_) {
    // The second half of an apply or a restore.
    return call.kind == HidutilCallKind::Get ? "" : describe(call) + " in place of the read-back";
  }
  if (jobs_.empty()) {
    return describe(call) + " that nothing asked for";
  }
  const Job job = jobs_.front();
  jobs_.pop_front();
  running_ = Running{job};
  const bool isRight = job == Job::Read ? call.kind == HidutilCallKind::Get
                                        : call.kind == HidutilCallKind::Set &&
                                              call.value == (job == Job::Apply ? 0 : -1);
  constexpr const char* wanted[] = {"an apply", "a restore", "a read"};
  return isRight ? "" : describe(call) + " in place of " + wanted[static_cast<int>(job)];
}

void OverrideModel::callEnded(const HidutilCall& call, const ChildProcessResult* result,
                              double wallTime) {
  if (!running_) {
    return;
  }
  if (call.kind == HidutilCallKind::Set) {
    running_->callFailed = hasFailed(result);
    loggedFailures_ += running_->callFailed ? 1 : 0;
    return;
  }
  const Running finished = *std::exchange(running_, std::nullopt);
  if (!finished.isOrphan) {
    finish(finished,
           hasFailed(result) ? std::nullopt : std::optional(countsOf(result->output.value())),
           wallTime);
  }
}

void OverrideModel::finish(const Running& finished, const std::optional<Counts>& status,
                           double wallTime) {
  if (finished.job == Job::Apply && !isEnabled_) {
    return;
  }
  status_ = status;
  if (finished.job == Job::Apply) {
    finishApply(finished.callFailed, wallTime);
  } else if (finished.job == Job::Restore) {
    lastApplyFailed_ = finished.callFailed;
    record_ = Record{!finished.callFailed && (!status || status->instant == 0), wallTime};
  }
}

void OverrideModel::finishApply(bool failed, double wallTime) {
  lastApplyFailed_ = failed;
  const bool isConfirmed =
      status_ && status_->instant > 0 && status_->normal == 0 && status_->other == 0;
  record_ = Record{!failed && isConfirmed, wallTime};
  if (!isConfirmed && retryAttempts_ < maximumRetries) {
    ++retryAttempts_;
    deadlines_.push_back({inSeconds(retrySeconds), true});
  }
}

std::string OverrideModel::statusLine() const {
  if (!isEnabled_) {
    return "Off, using your Mac's normal delay";
  }
  if (lastApplyFailed_) {
    return "Couldn't turn on. Check Input Monitoring permission";
  }
  if (!status_) {
    return "Checking\u2026";
  }
  if (status_->instant == 0) {
    return "Couldn't confirm. Try Re-apply Now";
  }
  return status_->normal + status_->other > 0 ? "Turning on\u2026"
                                              : "On. Every tap registers instantly";
}

std::string OverrideModel::symbol() const {
  if (!isEnabled_) {
    return "capslock";
  }
  return lastApplyFailed_ ? "exclamationmark.triangle" : "capslock.fill";
}

std::string OverrideModel::toolTip() const {
  if (!isEnabled_) {
    return "Zephlin: disabled (Apple default delay)";
  }
  return lastApplyFailed_ ? "Zephlin: enabled, but the fix could not be applied. Check Input "
                            "Monitoring permission."
                          : "Zephlin: instant Caps Lock is ON";
}

}  // namespace zephlin
