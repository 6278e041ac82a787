#import "Platform/macOS/Bridge.h"

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

namespace zephlin {

NSString* nativeText(std::string_view text) {
  return [[[NSString alloc] initWithBytes:text.data()
                                   length:text.size()
                                 encoding:NSUTF8StringEncoding] autorelease];
}

std::string portableText(NSString* text) {
  const char* const bytes = [text UTF8String];
  return bytes == nullptr ? std::string() : std::string(bytes);
}

}  // namespace zephlin
