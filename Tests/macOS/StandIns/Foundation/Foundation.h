#pragma once

// GNUstep's Foundation, and what Platform/macOS uses beyond it, as Apple documents it.

#include_next <Foundation/Foundation.h>

#undef NS_UNAVAILABLE
#define NS_UNAVAILABLE __attribute__((unavailable))

#pragma clang assume_nonnull begin

@interface NSTimer (StandIn)
- (NSTimeInterval)tolerance;
- (void)setTolerance:(NSTimeInterval)tolerance;
@end

/// NSBundle, where a test says what the main bundle is and has.
@interface StandInBundle : NSObject {
  NSString* _path;
}
+ (StandInBundle*)mainBundle;
+ (nullable instancetype)bundleWithPath:(NSString*)path;
- (NSString*)bundlePath;
- (nullable NSString*)privateFrameworksPath;
- (BOOL)load;
- (nullable Class)classNamed:(NSString*)className;
@end
#define NSBundle StandInBundle

#pragma clang assume_nonnull end
