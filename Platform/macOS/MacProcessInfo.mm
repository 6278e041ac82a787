#import "Platform/macOS/MacProcessInfo.h"

#import <Foundation/Foundation.h>

#include <cstdlib>

#import "Platform/macOS/Text.h"

namespace zephlin {

std::optional<std::string> MacProcessInfo::environmentVariable(const std::string& name) const {
  const char* const value = std::getenv(name.c_str());
  return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

std::string MacProcessInfo::mainBundlePath() const {
  return portableText([[NSBundle mainBundle] bundlePath]);
}

}  // namespace zephlin
