#import <Foundation/Foundation.h>

// GNUstep's applications start programs of the session, which start daemons. None does here.
@implementation NSTask (StandIn)

+ (NSTask*)launchedTaskWithLaunchPath:(NSString*)path arguments:(NSArray*)arguments {
  (void)path;
  (void)arguments;
  return nil;
}

@end
