#import "Platform/macOS/MacUserDefaults.h"

#import <CoreFoundation/CoreFoundation.h>
#import <Foundation/Foundation.h>

#import "Platform/macOS/Text.h"

namespace zephlin {

// boolForKey: would also take a text such as "NO" for a Boolean, and give NO for what is absent.
std::optional<bool> MacUserDefaults::boolean(const std::string& key) const {
  const id stored = [[NSUserDefaults standardUserDefaults] objectForKey:nativeText(key)];
  if (stored == nil || CFGetTypeID(static_cast<CFTypeRef>(stored)) != CFBooleanGetTypeID()) {
    return std::nullopt;
  }
  return [stored boolValue] != NO;
}

bool MacUserDefaults::boolForKey(const std::string& key) const {
  return [[NSUserDefaults standardUserDefaults] boolForKey:nativeText(key)] != NO;
}

void MacUserDefaults::setBoolean(const std::string& key, bool value) {
  [[NSUserDefaults standardUserDefaults] setBool:(value ? YES : NO) forKey:nativeText(key)];
}

void MacUserDefaults::setDouble(const std::string& key, double value) {
  [[NSUserDefaults standardUserDefaults] setDouble:value forKey:nativeText(key)];
}

}  // namespace zephlin
