#pragma once

#import <Foundation/Foundation.h>

#include <functional>

/// The target of a control or a menu item: does what it was made with. Controls and items do not
/// own their targets, so whoever makes one keeps it. Main thread.
@interface ZephlinActionTarget : NSObject {
 @private
  std::function<void()> _action;
}
- (instancetype)initWithAction:(std::function<void()>)action;
- (void)performAction:(id)sender;
@end
