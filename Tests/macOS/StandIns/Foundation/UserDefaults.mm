#import <Foundation/Foundation.h>

#import "StandIns/RunLoop.h"

namespace {

using SetBool = void (*)(id, SEL, BOOL, NSString*);
SetBool originalSetBool = nullptr;

// GNUstep's keeps the number 1 where YES is stored over it, since it takes them for equal.
void setBool(id self, SEL selector, BOOL value, NSString* key) {
  [self removeObjectForKey:key];
  originalSetBool(self, selector, value, key);
}

}  // namespace

@interface StandInUserDefaults : NSObject
@end

@implementation StandInUserDefaults

+ (void)load {
  originalSetBool = reinterpret_cast<SetBool>(standins::replaceMethod(
      "NSUserDefaults", @selector(setBool:forKey:), reinterpret_cast<IMP>(setBool)));
}

@end
