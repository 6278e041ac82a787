#include "Tests/Support/FakeHidutil.h"

#include <mutex>
#include <optional>
#include <thread>

#include "ZephlinCore/ChildProcessRunner.h"

namespace zephlin {

namespace test {

namespace {

const std::thread::id mainThread = std::this_thread::get_id();

struct State {
  std::mutex mutex;
  int exitStatus = 0;
  std::optional<std::string> value;
  std::vector<std::string> sets;
  bool neverOnMainThread = true;
};

State& state() {
  static State instance;
  return instance;
}

/// What follows the last colon of {"CapsLockDelayOverride":0}.
std::string valueOf(const std::string& json) {
  const auto begin = json.rfind(':') + 1;
  return json.substr(begin, json.rfind('}') - begin);
}

std::string listing(const std::optional<std::string>& value) {
  return "RegistryID  Key                   Value\n100000001   CapsLockDelayOverride   " +
         value.value_or("(null)") + "\n";
}

ChildProcessResult run(std::span<const std::string> arguments) {
  const std::scoped_lock lock(state().mutex);
  state().neverOnMainThread = state().neverOnMainThread && std::this_thread::get_id() != mainThread;
  const bool isSet = arguments[arguments.size() - 2] == "--set";
  if (isSet) {
    state().sets.push_back(valueOf(arguments.back()));
  }
  if (state().exitStatus != 0) {
    return {state().exitStatus, false, "no luck"};
  }
  if (isSet) {
    state().value = valueOf(arguments.back());
    return {};
  }
  return {0, false, listing(state().value)};
}

}  // namespace

FakeHidutil& FakeHidutil::shared() {
  static FakeHidutil instance;
  return instance;
}

void FakeHidutil::reset() {
  const std::scoped_lock lock(state().mutex);
  state().exitStatus = 0;
  state().value.reset();
  state().sets.clear();
  state().neverOnMainThread = true;
}

void FakeHidutil::setExitStatus(int status) {
  const std::scoped_lock lock(state().mutex);
  state().exitStatus = status;
}

std::vector<std::string> FakeHidutil::sets() const {
  const std::scoped_lock lock(state().mutex);
  return state().sets;
}

bool FakeHidutil::neverOnMainThread() const {
  const std::scoped_lock lock(state().mutex);
  return state().neverOnMainThread;
}

}  // namespace test

ChildProcessResult runChildProcess(const std::string& executable,
                                   std::span<const std::string> arguments,
                                   std::chrono::duration<double> timeLimit) {
  (void)executable;
  (void)timeLimit;
  return test::run(arguments);
}

}  // namespace zephlin
