#import <ServiceManagement/ServiceManagement.h>

#import "StandIns/CallLog.h"
#import "StandIns/Knobs.h"

namespace {

BOOL change(SMAppServiceStatus status, NSError** error) {
  const std::string& failure = standins::knobs().loginError;
  if (failure.empty()) {
    standins::knobs().loginStatus = status;
    return YES;
  }
  if (error != nullptr) {
    NSDictionary* const details =
        [NSDictionary dictionaryWithObject:[NSString stringWithUTF8String:failure.c_str()]
                                    forKey:NSLocalizedDescriptionKey];
    *error = [NSError errorWithDomain:@"SMAppServiceErrorDomain" code:1 userInfo:details];
  }
  return NO;
}

}  // namespace

@implementation SMAppService

+ (SMAppService*)mainAppService {
  static SMAppService* const service = [[SMAppService alloc] init];
  standins::record("SMAppService mainAppService");
  return service;
}

- (BOOL)registerAndReturnError:(NSError**)error {
  standins::record("SMAppService register");
  return change(standins::knobs().registrationNeedsApproval ? SMAppServiceStatusRequiresApproval
                                                            : SMAppServiceStatusEnabled,
                error);
}

- (BOOL)unregisterAndReturnError:(NSError**)error {
  standins::record("SMAppService unregister");
  return change(SMAppServiceStatusNotRegistered, error);
}

- (SMAppServiceStatus)status {
  standins::record("SMAppService status");
  return static_cast<SMAppServiceStatus>(standins::knobs().loginStatus);
}

+ (void)openSystemSettingsLoginItems {
  standins::record("SMAppService openSystemSettingsLoginItems");
}

@end
