#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace zephlin {

/// One keyboard service and what it reports for `CapsLockDelayOverride`.
struct SimulatedKeyboard {
  /// Absent until it is set for the first time.
  std::optional<std::int64_t> value;
  /// Setting the value succeeds and changes nothing.
  bool isStubborn = false;
};

/// The keyboards that are plugged in, by their number.
class SimulatedKeyboards {
 public:
  using Number = std::uint64_t;

  /// The new keyboard's value is unset. Calls no observer: SimulatedDesktop::plugKeyboard does.
  Number add(bool isStubborn = false);
  /// False if there is no such keyboard.
  bool remove(Number number);
  void removeAll() { keyboards_.clear(); }

  /// The keyboard; std::out_of_range if it does not exist.
  SimulatedKeyboard& at(Number number) { return keyboards_.at(number); }
  [[nodiscard]] std::optional<std::int64_t> value(Number number) const {
    return keyboards_.at(number).value;
  }
  [[nodiscard]] const std::map<Number, SimulatedKeyboard>& all() const { return keyboards_; }
  [[nodiscard]] std::size_t count() const { return keyboards_.size(); }
  /// Whether every keyboard has this value; true if there is none.
  [[nodiscard]] bool allHave(std::optional<std::int64_t> value) const;

  /// Sets all but the stubborn ones.
  void setAll(std::int64_t value);
  /// A heading and one row each: registry ID, property, value or "(null)".
  [[nodiscard]] std::string listing() const;

 private:
  std::map<Number, SimulatedKeyboard> keyboards_;
  Number next_ = 1;
};

}  // namespace zephlin
