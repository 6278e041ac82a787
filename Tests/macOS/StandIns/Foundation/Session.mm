#import <AppKit/AppKit.h>

// GNUstep's applications talk to servers and start programs of the session, which start daemons
// that tests may not leave behind. None does here.

// A method of GNUstep's own, not AppKit's.
@implementation NSPasteboard (StandIn)

+ (id)_pbs {
  return nil;
}

@end

@implementation NSTask (StandIn)

+ (NSTask*)launchedTaskWithLaunchPath:(NSString*)path arguments:(NSArray*)arguments {
  (void)path;
  (void)arguments;
  return nil;
}

@end

@implementation NSDistributedNotificationCenter (StandIn)

+ (NSNotificationCenter*)defaultCenter {
  return nil;
}

+ (NSNotificationCenter*)notificationCenterForType:(NSString*)type {
  (void)type;
  return nil;
}

@end
