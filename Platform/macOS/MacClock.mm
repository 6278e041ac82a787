#import "Platform/macOS/MacClock.h"

#import <CoreFoundation/CoreFoundation.h>

namespace zephlin {

WallTime MacClock::now() const {
  return WallTime(Seconds(CFAbsoluteTimeGetCurrent() + kCFAbsoluteTimeIntervalSince1970));
}

}  // namespace zephlin
