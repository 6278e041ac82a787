#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace zephlin {

/// A callback that may destroy its owner, and this object with it, while it runs. The caller
/// touches nothing of its own afterwards.
template <typename... Arguments>
class EndableCallback {
 public:
  using Function = std::function<void(Arguments...)>;

  explicit EndableCallback(Function function)
      : function_(std::make_shared<const Function>(std::move(function))) {}

  void call(Arguments... arguments) const {
    const std::shared_ptr<const Function> function = function_;
    (*function)(arguments...);
  }

  /// Calls once for each value, in order, until a call destroys this object.
  template <typename Value>
  void callForEach(const std::vector<Value>& values) const {
    const std::weak_ptr<const Function> weak = function_;
    for (const Value& value : values) {
      const std::shared_ptr<const Function> function = weak.lock();
      if (!function) {
        return;
      }
      (*function)(value);
    }
  }

 private:
  std::shared_ptr<const Function> function_;
};

}  // namespace zephlin
