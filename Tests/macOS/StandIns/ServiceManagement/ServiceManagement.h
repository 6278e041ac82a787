#pragma once

// The part of Service Management that Platform/macOS uses, as Apple documents it.

#import <Foundation/Foundation.h>

typedef NS_ENUM(NSInteger, SMAppServiceStatus) {
  SMAppServiceStatusNotRegistered,
  SMAppServiceStatusEnabled,
  SMAppServiceStatusRequiresApproval,
  SMAppServiceStatusNotFound,
};

@interface SMAppService : NSObject
+ (nonnull SMAppService*)mainAppService;
- (BOOL)registerAndReturnError:(NSError* _Nullable* _Nullable)error;
- (BOOL)unregisterAndReturnError:(NSError* _Nullable* _Nullable)error;
- (SMAppServiceStatus)status;
+ (void)openSystemSettingsLoginItems;
@end
