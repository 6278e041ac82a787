#import "StandIns/AppKit/ViewState.h"

#include <unordered_map>

#import "StandIns/RunLoop.h"

namespace {

std::unordered_map<NSView*, standins::ViewState>& states() {
  static auto& instance = *new std::unordered_map<NSView*, standins::ViewState>;
  return instance;
}

using Dealloc = void (*)(id, SEL);
Dealloc originalDealloc = nullptr;

void dealloc(id self, SEL selector) {
  if (const auto found = states().find(self); found != states().end()) {
    [found->second.layer release];
    for (NSLayoutConstraint* constraint : found->second.constraints) {
      [constraint release];
    }
    states().erase(found);
  }
  originalDealloc(self, selector);
}

}  // namespace

@interface StandInViewState : NSObject
@end

@implementation StandInViewState

+ (void)load {
  originalDealloc = reinterpret_cast<Dealloc>(
      standins::replaceMethod("NSView", @selector(dealloc), reinterpret_cast<IMP>(dealloc)));
}

@end

namespace standins {

ViewState& viewState(NSView* view) {
  return states()[view];
}

}  // namespace standins
