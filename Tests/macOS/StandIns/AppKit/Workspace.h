#pragma once

// The workspace's notification centre, and the list of running applications.

#pragma clang assume_nonnull begin

@interface StandInWorkspace : NSObject
@property(class, readonly, strong) StandInWorkspace* sharedWorkspace;
@property(readonly, strong) NSNotificationCenter* notificationCenter;
@end

@interface StandInRunningApplication : NSObject {
 @private
  pid_t _processIdentifier;
}
+ (NSArray*)runningApplicationsWithBundleIdentifier:(NSString*)bundleIdentifier;
@property(readonly) pid_t processIdentifier;
@end

#define NSWorkspace StandInWorkspace
#define NSRunningApplication StandInRunningApplication

#pragma clang assume_nonnull end
