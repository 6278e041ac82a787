#import "Platform/macOS/MacLoginService.h"

#import <ServiceManagement/ServiceManagement.h>

#include "Platform/macOS/NativeError.h"
#import "Platform/macOS/Text.h"

namespace zephlin {

namespace {

[[noreturn]] void throwError(NSError* error) {
  throw NativeError(portableText([error localizedDescription]), portableText([error domain]),
                    [error code]);
}

}  // namespace

void MacLoginService::registerMainApp() {
  NSError* error = nil;
  if (![[SMAppService mainAppService] registerAndReturnError:&error]) {
    throwError(error);
  }
}

void MacLoginService::unregisterMainApp() {
  NSError* error = nil;
  if (![[SMAppService mainAppService] unregisterAndReturnError:&error]) {
    throwError(error);
  }
}

LoginServiceStatus MacLoginService::status() const {
  return static_cast<LoginServiceStatus>([[SMAppService mainAppService] status]);
}

void MacLoginService::openSystemSettingsLoginItems() {
  [SMAppService openSystemSettingsLoginItems];
}

}  // namespace zephlin
