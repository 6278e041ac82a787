#include "Platform/Simulated/SimulatedHidutil.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <utility>

namespace zephlin {

namespace {

constexpr std::string_view toolPath = "/usr/bin/hidutil";
constexpr std::string_view keyboardMatching = R"({"PrimaryUsagePage":1,"PrimaryUsage":6})";
constexpr std::string_view propertyKey = "CapsLockDelayOverride";
constexpr std::string_view setPrefix = R"({"CapsLockDelayOverride":)";

/// The number in `{"CapsLockDelayOverride":NUMBER}`.
std::optional<std::int64_t> valueOfSet(std::string_view json) {
  if (!json.starts_with(setPrefix) || !json.ends_with('}')) {
    return std::nullopt;
  }
  const std::string_view number = json.substr(setPrefix.size(), json.size() - setPrefix.size() - 1);
  std::int64_t value = 0;
  const char* const end = number.data() + number.size();
  const auto [rest, error] = std::from_chars(number.data(), end, value);
  return error == std::errc() && rest == end ? std::optional(value) : std::nullopt;
}

HidutilCall parse(std::span<const std::string> arguments) {
  HidutilCall call;
  if (arguments.size() != 5 || arguments[0] != "property" || arguments[1] != "--matching" ||
      arguments[2] != keyboardMatching) {
    return call;
  }
  if (arguments[3] == "--get" && arguments[4] == propertyKey) {
    call.kind = HidutilCallKind::Get;
  } else if (arguments[3] == "--set") {
    call.value = valueOfSet(arguments[4]);
    call.kind = call.value ? HidutilCallKind::Set : HidutilCallKind::Unknown;
  }
  return call;
}

[[noreturn]] void failToLaunch(std::errc error) {
  throw std::system_error(std::make_error_code(error), std::string(toolPath));
}

}  // namespace

std::string outputThatIsNotUtf8() {
  return "100000a01 CapsLockDelayOverride 0\n\xff\xfe\x80\n";
}

std::string outputOfNonsenseRows() {
  return "RegistryID Key Value\n\n  \nno listing\n100000a01 CapsLockDelayOverride zero\n";
}

void SimulatedHidutil::failSets(HidutilFault::Kind fault, std::optional<int> times) {
  setFault_ = Fault{std::move(fault), times};
}

void SimulatedHidutil::failGets(HidutilFault::Kind fault, std::optional<int> times) {
  getFault_ = Fault{std::move(fault), times};
}

void SimulatedHidutil::clearFaults() {
  setFault_.reset();
  getFault_.reset();
}

std::size_t SimulatedHidutil::setsOf(std::int64_t value) const {
  return static_cast<std::size_t>(
      std::count_if(calls_.begin(), calls_.end(),
                    [value](const HidutilCall& call) { return call.value == value; }));
}

std::size_t SimulatedHidutil::gets() const {
  return static_cast<std::size_t>(
      std::count_if(calls_.begin(), calls_.end(),
                    [](const HidutilCall& call) { return call.kind == HidutilCallKind::Get; }));
}

std::optional<HidutilFault::Kind> SimulatedHidutil::take(std::optional<Fault>& fault) {
  if (!fault) {
    return std::nullopt;
  }
  if (!fault->timesLeft) {
    return fault->kind;
  }
  if (*fault->timesLeft <= 0) {
    fault.reset();
    return std::nullopt;
  }
  HidutilFault::Kind kind = fault->kind;
  if (--*fault->timesLeft == 0) {
    fault.reset();
  }
  return kind;
}

std::optional<HidutilFault::Kind> SimulatedHidutil::takeFault(HidutilCallKind kind) {
  switch (kind) {
    case HidutilCallKind::Set:
      return take(setFault_);
    case HidutilCallKind::Get:
      return take(getFault_);
    case HidutilCallKind::Unknown:
      break;
  }
  return std::nullopt;
}

std::size_t SimulatedHidutil::begin(HidutilCall call) {
  call.start = secondsFromTicks(loop_.now());
  call.onMainThread = loop_.isOnMainThread();
  call.overlapped = running_ > 0;
  callsOnMainThread_ += call.onMainThread ? 1 : 0;
  overlappingCalls_ += call.overlapped ? 1 : 0;
  unknownCalls_ += call.kind == HidutilCallKind::Unknown ? 1 : 0;
  ++running_;
  calls_.push_back(call);
  if (onCallStarted) {
    onCallStarted(call);
  }
  return calls_.size() - 1;
}

void SimulatedHidutil::end(std::size_t call, const ChildProcessResult* result) {
  --running_;
  calls_[call].end = secondsFromTicks(loop_.now());
  if (onCallEnded) {
    onCallEnded(calls_[call], result);
  }
}

ChildProcessResult SimulatedHidutil::run(const std::string& executable,
                                         std::span<const std::string> arguments,
                                         std::chrono::duration<double> timeLimit) {
  if (executable != toolPath) {
    failToLaunch(std::errc::no_such_file_or_directory);
  }
  const HidutilCall call = parse(arguments);
  const std::optional<HidutilFault::Kind> fault = takeFault(call.kind);
  const std::size_t index = begin(call);
  const auto* const launchFailure =
      fault ? std::get_if<HidutilFault::LaunchFailure>(&*fault) : nullptr;
  if (launchFailure != nullptr) {
    end(index, nullptr);
    failToLaunch(launchFailure->error);
  }
  const VirtualTicks limit = ticksFromSeconds(timeLimit.count());
  const bool hangs = fault && std::holds_alternative<HidutilFault::Hang>(*fault);
  const bool timesOut = hangs || duration_ > limit;
  loop_.blockFor(timesOut ? limit : duration_);
  if (loop_.isShuttingDown()) {
    end(index, nullptr);
    failToLaunch(std::errc::operation_canceled);
  }
  ChildProcessResult result;
  if (timesOut) {
    constexpr int killed = 9;
    result.terminationStatus = killed;
    result.timedOut = true;
  } else {
    result = perform(call, fault);
  }
  end(index, &result);
  return result;
}

ChildProcessResult SimulatedHidutil::perform(const HidutilCall& call,
                                             const std::optional<HidutilFault::Kind>& fault) {
  if (fault) {
    if (const auto* exit = std::get_if<HidutilFault::Exit>(&*fault)) {
      return {exit->status, false, exit->text};
    }
  }
  ChildProcessResult result;
  if (call.kind == HidutilCallKind::Unknown) {
    constexpr int usageError = 64;
    return {usageError, false, "hidutil: these arguments are not understood\n"};
  }
  if (call.kind == HidutilCallKind::Set) {
    keyboards_.setAll(*call.value);
  } else {
    result.output = keyboards_.listing();
  }
  if (fault) {
    if (const auto* output = std::get_if<HidutilFault::Output>(&*fault)) {
      result.output = output->text;
    }
  }
  return result;
}

}  // namespace zephlin
