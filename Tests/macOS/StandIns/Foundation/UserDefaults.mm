#import "StandIns/ReplacedMethod.h"

namespace {

// GNUstep's keeps the number 1 where YES is stored over it, since it takes them for equal.
const standins::ReplacedMethod<void, BOOL, NSString*> setBool(
    "NSUserDefaults", "setBool:forKey:", [](id self, SEL selector, BOOL value, NSString* key) {
      [self removeObjectForKey:key];
      setBool.original(self, selector, value, key);
    });

}  // namespace
