#pragma once

#import <Foundation/Foundation.h>

#include <functional>
#include <string>
#include <string_view>

/// The target of a control or a menu item: performs the action that it was made with. Controls and
/// items do not own their targets, so whoever makes one keeps it. Main thread.
@interface ZephlinActionTarget : NSObject {
 @private
  std::function<void()> _action;
}
- (instancetype)initWithAction:(std::function<void()>)action;
- (void)performAction:(id)sender;
@end

namespace zephlin {

/// The text, which is UTF-8, as an autoreleased string. Any thread.
NSString* nativeText(std::string_view text);

/// The string as UTF-8; empty for nil. Any thread.
std::string portableText(NSString* text);

}  // namespace zephlin
