#include "StandIns/CallLog.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <mutex>

namespace standins {

namespace {

struct State {
  std::mutex mutex;
  std::vector<std::string> calls;
  std::map<std::string, int> live;
};

// Never destroyed: some objects of the frameworks outlive main.
State& state() {
  static State& instance = *new State;
  return instance;
}

}  // namespace

void record(const char* format, ...) {
  char text[512];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  const std::scoped_lock lock(state().mutex);
  state().calls.emplace_back(text);
}

std::vector<std::string> calls(const std::vector<std::string_view>& prefixes) {
  const std::scoped_lock lock(state().mutex);
  std::vector<std::string> found;
  for (const std::string& call : state().calls) {
    const bool wanted = std::any_of(prefixes.begin(), prefixes.end(),
                                    [&call](auto prefix) { return call.starts_with(prefix); });
    if (wanted || prefixes.empty()) {
      found.push_back(call);
    }
  }
  return found;
}

void forgetCalls() {
  const std::scoped_lock lock(state().mutex);
  state().calls.clear();
}

Live::Live(const char* kind) : kind_(kind) {
  const std::scoped_lock lock(state().mutex);
  ++state().live[kind_];
}

Live::~Live() {
  const std::scoped_lock lock(state().mutex);
  if (--state().live[kind_] == 0) {
    state().live.erase(kind_);
  }
}

std::map<std::string, int> liveObjects() {
  const std::scoped_lock lock(state().mutex);
  return state().live;
}

}  // namespace standins
