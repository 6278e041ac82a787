#import "StandIns/AppKit/ViewState.h"

#include <unordered_map>

#import "StandIns/ReplacedMethod.h"

namespace {

std::unordered_map<NSView*, standins::ViewState>& states() {
  static auto& instance = *new std::unordered_map<NSView*, standins::ViewState>;
  return instance;
}

const standins::ReplacedMethod<void> dealloc("NSView", "dealloc", [](id self, SEL selector) {
  if (const auto found = states().find(self); found != states().end()) {
    [found->second.layer release];
    for (NSLayoutConstraint* constraint : found->second.constraints) {
      [constraint release];
    }
    states().erase(found);
  }
  dealloc.original(self, selector);
});

}  // namespace

standins::ViewState& standins::viewState(NSView* view) {
  return states()[view];
}
