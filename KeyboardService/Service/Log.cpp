#include "KeyboardService/Service/Log.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <utility>

namespace zephlin {
namespace {

/// Sets the cause of what is logged in its lifetime.
class PresentCause {
 public:
  PresentCause(std::optional<std::string>& present, const std::string& cause)
      : present_(present), former_(std::exchange(present, cause)) {}
  PresentCause(const PresentCause&) = delete;
  PresentCause& operator=(const PresentCause&) = delete;
  ~PresentCause() { present_ = std::move(former_); }

 private:
  std::optional<std::string>& present_;
  std::optional<std::string> former_;
};

}  // namespace

void logToStandardError(const std::string& line) {
  constexpr int timeoutMilliseconds = 100;
  static bool isStalled = false;
  pollfd standardError{STDERR_FILENO, POLLOUT, 0};
  isStalled = ::poll(&standardError, 1, isStalled ? 0 : timeoutMilliseconds) == 0;
  if (isStalled) {
    return;
  }
  // One write for the whole line, so that it stays whole among other programs' lines.
  const std::string text = "zephlin-hidd: " + line + '\n';
  std::fwrite(text.data(), 1, text.size(), stderr);
}

LimitedLog::LimitedLog(EventLoop& loop, Log log, Limits limits)
    : loop_(loop), log_(std::move(log)), limits_(limits) {}

void LimitedLog::write(const std::string& line) {
  if (!present_) {
    log_(line);
    return;
  }
  Cause& cause = find(*present_);
  count(cause);
  if (cause.leftOut == 0 && cause.lines >= 1) {
    cause.lines -= 1;
    log_(line);
  } else if (cause.leftOut++ == 0) {
    cause.nextLine.setDelay(limits_.timeBetweenLines);
  }
}

void LimitedLog::during(const std::string& cause, const std::function<void()>& action) {
  const PresentCause scope(present_, cause);
  action();
}

LimitedLog::Cause& LimitedLog::find(const std::string& name) {
  if (const auto known = causes_.find(name); known != causes_.end()) {
    return known->second;
  }
  for (auto each = causes_.begin(); each != causes_.end();) {
    count(each->second);
    const bool isQuiet = each->second.lines >= static_cast<double>(limits_.burst);
    each = isQuiet ? causes_.erase(each) : std::next(each);
  }
  Cause& cause = causes_[name];
  cause.lines = static_cast<double>(limits_.burst);
  cause.counted = Clock::now();
  cause.nextLine = loop_.timer([this, name] { summarise(name); });
  return cause;
}

void LimitedLog::count(Cause& cause) const {
  const auto now = Clock::now();
  const std::chrono::duration<double, std::milli> passed = now - cause.counted;
  cause.counted = now;
  cause.lines =
      std::min(cause.lines + passed / limits_.timeBetweenLines, static_cast<double>(limits_.burst));
}

void LimitedLog::summarise(const std::string& name) {
  Cause& cause = causes_.at(name);
  count(cause);
  cause.lines = std::max(cause.lines - 1, 0.0);
  log_(std::to_string(std::exchange(cause.leftOut, 0)) + " more lines caused by " + name +
       " left out");
}

}  // namespace zephlin
