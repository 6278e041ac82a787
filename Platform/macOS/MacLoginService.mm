#import "Platform/macOS/MacLoginService.h"

#import <ServiceManagement/ServiceManagement.h>

#include <stdexcept>

#import "Platform/macOS/Text.h"

namespace zephlin {

namespace {

[[noreturn]] void throwError(NSError* error) {
  throw std::runtime_error(portableText([error localizedDescription]));
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
