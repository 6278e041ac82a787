#import <Foundation/Foundation.h>

#import "StandIns/CallLog.h"
#import "StandIns/Knobs.h"

@implementation StandInBundle

+ (StandInBundle*)mainBundle {
  return [self bundleAt:[NSString stringWithUTF8String:standins::knobs().mainBundlePath.c_str()]];
}

+ (instancetype)bundleWithPath:(NSString*)path {
  standins::record("NSBundle bundleWithPath:%s", [path UTF8String]);
  return standins::knobs().bundleHasSparkle && [path hasSuffix:@"/Sparkle.framework"]
             ? [self bundleAt:path]
             : nil;
}

+ (instancetype)bundleAt:(NSString*)path {
  StandInBundle* const bundle = [[[self alloc] init] autorelease];
  bundle->_path = [path copy];
  return bundle;
}

- (void)dealloc {
  [_path release];
  [super dealloc];
}

- (NSString*)bundlePath {
  return _path;
}

- (NSString*)privateFrameworksPath {
  return [_path stringByAppendingPathComponent:@"Contents/Frameworks"];
}

- (BOOL)load {
  return YES;
}

- (Class)classNamed:(NSString*)className {
  return NSClassFromString(className);
}

@end
