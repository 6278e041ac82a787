#import <Foundation/Foundation.h>

#import "StandIns/CallLog.h"

// Sparkle's standard updater controller, as its documentation declares it.

@interface SPUStandardUpdaterController : NSObject {
 @private
  standins::LiveController _live;
}
- (instancetype)initWithStartingUpdater:(BOOL)startUpdater
                        updaterDelegate:(id)updaterDelegate
                     userDriverDelegate:(id)userDriverDelegate;
- (void)checkForUpdates:(id)sender;
@end

@implementation SPUStandardUpdaterController

- (instancetype)initWithStartingUpdater:(BOOL)startUpdater
                        updaterDelegate:(id)updaterDelegate
                     userDriverDelegate:(id)userDriverDelegate {
  standins::record("SPUStandardUpdaterController init(starting %d, delegates %s)", startUpdater,
                   updaterDelegate == nil && userDriverDelegate == nil ? "none" : "some");
  return [super init];
}

- (void)checkForUpdates:(id)sender {
  (void)sender;
  standins::record("SPUStandardUpdaterController checkForUpdates:");
}

@end
