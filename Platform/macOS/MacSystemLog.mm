#import "Platform/macOS/MacSystemLog.h"

#import <Foundation/Foundation.h>

#import "Platform/macOS/Text.h"

namespace zephlin {

void MacSystemLog::log(const std::string& text) {
  @autoreleasepool {
    NSLog(@"%@", nativeText(text));
  }
}

}  // namespace zephlin
