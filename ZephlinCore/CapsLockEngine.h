#pragma once

#include <cstdint>
#include <exception>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace zephlin {

/// The only code that touches the keyboards' Caps Lock delay: it runs hidutil to set the HID
/// property `CapsLockDelayOverride` on every keyboard service, and to read it back.
///
/// A copyable value whose only state is the tool's path. Each operation is one run of the tool
/// and blocks its thread for at most `timeoutSeconds` plus the time a kill takes; any thread, any
/// number at once. Callers whose writes and read-backs must not interleave serialize them.
///
/// Every operation throws `EngineError` when the tool ran and failed, and std::system_error (the
/// platform's own error, unchanged) when it could not be launched or watched. A failed operation
/// can simply be repeated.
class CapsLockEngine {
 public:
  /// Selects every keyboard: HID usage page 1 (Generic Desktop), usage 6 (Keyboard); see the HID
  /// Usage Tables, chapter 4.
  static constexpr std::string_view keyboardMatching = R"({"PrimaryUsagePage":1,"PrimaryUsage":6})";
  static constexpr std::string_view propertyKey = "CapsLockDelayOverride";
  /// The platform's own delay, in milliseconds.
  static constexpr std::int64_t appleDefaultDelayMS = 75;
  /// Written to remove the override.
  static constexpr std::int64_t noOverride = -1;
  /// Written to make Caps Lock instant, in milliseconds.
  static constexpr std::int64_t instantDelayMS = 0;
  /// Time limit of one run of the tool.
  static constexpr double timeoutSeconds = 10.0;

  /// How many keyboard services carry which delay.
  struct Status {
    /// The property is 0.
    std::int64_t instantServices = 0;
    /// The property is absent, negative or exactly `appleDefaultDelayMS`.
    std::int64_t defaultServices = 0;
    /// Any other positive value.
    std::int64_t otherServices = 0;

    /// All of them are instant. False if there are none.
    [[nodiscard]] bool isInstant() const;
    /// Some of them are instant, and some are not.
    [[nodiscard]] bool isPartial() const;
    /// The sum of the counts; an overflow aborts the process.
    [[nodiscard]] std::int64_t totalServices() const;

    bool operator==(const Status&) const = default;
  };

  /// The tool was launched and did not succeed.
  class EngineError : public std::exception {
   public:
    struct HidutilFailed {
      /// Or the number of the signal that ended the tool.
      std::int32_t exitStatus;
      /// The tool's standard output and standard error, untrimmed; empty if they are not valid
      /// UTF-8 or too long to keep.
      std::string output;
    };
    /// The tool ran past `timeoutSeconds` and was killed.
    struct TimedOut {};
    using Reason = std::variant<HidutilFailed, TimedOut>;

    explicit EngineError(Reason reason);

    [[nodiscard]] const Reason& reason() const noexcept { return reason_; }
    /// The text to show. It ends as the tool's output ends, line feed included.
    [[nodiscard]] const std::string& errorDescription() const noexcept { return description_; }
    /// `errorDescription()` up to its first NUL.
    [[nodiscard]] const char* what() const noexcept override { return description_.c_str(); }

   private:
    Reason reason_;
    std::string description_;
  };

  /// Runs nothing yet. `hidutilPath` is the executable; PATH is not searched.
  explicit CapsLockEngine(std::string hidutilPath);

  /// Sets the override to `instantDelayMS` on every keyboard; reads nothing back.
  void applyInstant() const;
  /// Removes the override from every keyboard; reads nothing back.
  void restoreDefault() const;
  /// Sets the override to `value` milliseconds on every keyboard; reads nothing back. Returns what
  /// the tool printed, empty if that is not valid UTF-8 or too long to keep.
  std::string setOverride(std::int64_t value) const;
  /// Counts the keyboard services by the delay they report; no keyboards if the output is not valid
  /// UTF-8. Throws std::system_error when the listing is too long to keep.
  [[nodiscard]] Status status() const;

  std::string hidutilPath;

 private:
  /// Returns the tool's standard output and standard error as one text, empty if it is not valid
  /// UTF-8; nothing if it is too long to keep.
  [[nodiscard]] std::optional<std::string> runHidutil(std::span<const std::string> arguments) const;
};

/// The text that shows a failure of the engine to the user.
std::string localizedDescription(const std::exception& error);

}  // namespace zephlin
