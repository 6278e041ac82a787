#pragma once

#import <CoreGraphics/CoreGraphics.h>
#import <Foundation/Foundation.h>

#import "StandIns/CallLog.h"

/// What a CFRunLoopSourceRef points to.
@interface StandInRunLoopSource : NSObject {
 @public
  BOOL _isScheduled;

 @private
  standins::LiveSource _live;
}
@end

/// What the CFMachPortRef of an event tap points to.
@interface StandInMachPort : NSObject {
 @public
  StandInRunLoopSource* _source;  // Not owned.
  CGEventMask _mask;
  CGEventTapCallBack _callback;
  void* _userInfo;
  BOOL _isEnabled;

 @private
  standins::LivePort _live;
}
@end

/// The same, known to Quartz.
@interface StandInEventTap : StandInMachPort
@end
