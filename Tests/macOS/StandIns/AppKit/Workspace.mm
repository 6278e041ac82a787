#import <AppKit/AppKit.h>

#import "StandIns/CallLog.h"
#import "StandIns/Knobs.h"

// A block for the main queue runs on the main thread at once, where the notification is posted
// there.
@interface StandInNotificationCenter : NSNotificationCenter
@end

@implementation StandInNotificationCenter

- (id)addObserverForName:(NSString*)name
                  object:(id)object
                   queue:(NSOperationQueue*)queue
              usingBlock:(GSNotificationBlock)block {
  standins::record("NSWorkspace addObserverForName:%s object:%s queue:%s", [name UTF8String],
                   object == nil ? "any" : "one",
                   queue == [NSOperationQueue mainQueue] ? "main" : "other");
  return [super addObserverForName:name object:object queue:nil usingBlock:block];
}

- (void)removeObserver:(id)observer {
  standins::record("NSWorkspace removeObserver:");
  [super removeObserver:observer];
}

@end

@implementation StandInWorkspace

+ (StandInWorkspace*)sharedWorkspace {
  static StandInWorkspace* const workspace = [[StandInWorkspace alloc] init];
  return workspace;
}

- (NSNotificationCenter*)notificationCenter {
  static NSNotificationCenter* const center = [[StandInNotificationCenter alloc] init];
  return center;
}

@end

@implementation StandInRunningApplication

@synthesize processIdentifier = _processIdentifier;

+ (NSArray*)runningApplicationsWithBundleIdentifier:(NSString*)bundleIdentifier {
  NSMutableArray* const found = [NSMutableArray array];
  for (const auto& [identifier, process] : standins::knobs().runningApplications) {
    if (identifier == [bundleIdentifier UTF8String]) {
      StandInRunningApplication* const application =
          [[[StandInRunningApplication alloc] init] autorelease];
      application->_processIdentifier = process;
      [found addObject:application];
    }
  }
  return found;
}

@end
