#pragma once

#include <functional>
#include <utility>

#include "Platform/Views.h"

namespace zephlin {

/// Hears of a view's wish to be shown anew, for as long as it lives. The view outlives it. Main
/// thread.
class DisplayHook {
 public:
  DisplayHook(View& view, std::function<void()> needsDisplay) : view_(view) {
    view_.onNeedsDisplay = std::move(needsDisplay);
  }
  DisplayHook(const DisplayHook&) = delete;
  DisplayHook& operator=(const DisplayHook&) = delete;
  ~DisplayHook() { view_.onNeedsDisplay = nullptr; }

 private:
  View& view_;
};

}  // namespace zephlin
