#import "Platform/macOS/ActionTarget.h"

#include <utility>

@implementation ZephlinActionTarget

- (instancetype)initWithAction:(std::function<void()>)action {
  self = [super init];
  if (self != nil) {
    _action = std::move(action);
  }
  return self;
}

- (void)performAction:(id)sender {
  (void)sender;
  // A copy, since what is done may end the control that keeps this target.
  const std::function<void()> action = _action;
  action();
}

@end
