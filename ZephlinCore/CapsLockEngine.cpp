#include "ZephlinCore/CapsLockEngine.h"

#include <array>
#include <chrono>
#include <system_error>
#include <utility>

#include "Base/CheckedArithmetic.h"
#include "ZephlinCore/ChildProcessRunner.h"
#include "ZephlinCore/HidUtilOutputParser.h"
#include "ZephlinCore/Utf8.h"

namespace zephlin {

namespace {

std::string describe(const CapsLockEngine::EngineError::Reason& reason) {
  if (const auto* failed = std::get_if<CapsLockEngine::EngineError::HidutilFailed>(&reason)) {
    return "hidutil exited with status " + std::to_string(failed->exitStatus) + ": " +
           failed->output;
  }
  return "hidutil did not finish within " +
         std::to_string(static_cast<int>(CapsLockEngine::timeoutSeconds)) + " seconds";
}

std::int64_t& countFor(const HidPropertyRow& row, CapsLockEngine::Status& status) {
  if (row.value == CapsLockEngine::instantDelayMS) {
    return status.instantServices;
  }
  if (!row.value || *row.value < 0 || *row.value == CapsLockEngine::appleDefaultDelayMS) {
    return status.defaultServices;
  }
  return status.otherServices;
}

}  // namespace

bool CapsLockEngine::Status::isInstant() const {
  return instantServices > 0 && defaultServices == 0 && otherServices == 0;
}

bool CapsLockEngine::Status::isPartial() const {
  return instantServices > 0 && (defaultServices != 0 || otherServices != 0);
}

std::int64_t CapsLockEngine::Status::totalServices() const {
  return checkedSum(checkedSum(instantServices, defaultServices), otherServices);
}

CapsLockEngine::EngineError::EngineError(Reason reason)
    : reason_(std::move(reason)), description_(describe(reason_)) {}

CapsLockEngine::CapsLockEngine(std::string path) : hidutilPath(std::move(path)) {}

void CapsLockEngine::applyInstant() const {
  setOverride(instantDelayMS);
}

void CapsLockEngine::restoreDefault() const {
  setOverride(noOverride);
}

std::string CapsLockEngine::setOverride(std::int64_t value) const {
  const std::array<std::string, 5> arguments = {
      "property", "--matching", std::string(keyboardMatching), "--set",
      R"({"CapsLockDelayOverride":)" + std::to_string(value) + "}"};
  return runHidutil(arguments).value_or("");
}

CapsLockEngine::Status CapsLockEngine::status() const {
  const std::array<std::string, 5> arguments = {
      "property", "--matching", std::string(keyboardMatching), "--get", std::string(propertyKey)};
  Status status;
  const std::optional<std::string> listing = runHidutil(arguments);
  if (!listing) {
    throw std::system_error(
        std::make_error_code(std::errc::message_size),
        "hidutil printed more than " + std::to_string(maximumChildOutputBytes >> 20U) + " MiB");
  }
  for (const HidPropertyRow& row : HidUtilOutputParser::parse(*listing)) {
    ++countFor(row, status);
  }
  return status;
}

std::optional<std::string> CapsLockEngine::runHidutil(
    std::span<const std::string> arguments) const {
  ChildProcessResult result =
      runChildProcess(hidutilPath, arguments, std::chrono::duration<double>(timeoutSeconds));
  if (result.timedOut) {
    throw EngineError(EngineError::TimedOut{});
  }
  if (result.output && !isValidUtf8(*result.output)) {
    result.output->clear();
  }
  if (result.terminationStatus != 0) {
    throw EngineError(EngineError::HidutilFailed{result.terminationStatus,
                                                 std::move(result.output).value_or("")});
  }
  return std::move(result.output);
}

std::string localizedDescription(const std::exception& error) {
  if (const auto* engineError = dynamic_cast<const CapsLockEngine::EngineError*>(&error)) {
    return engineError->errorDescription();
  }
  return error.what();
}

}  // namespace zephlin
