#import "Platform/macOS/MacClock.h"

#import <CoreFoundation/CoreFoundation.h>

namespace zephlin {

WallTime MacClock::now() const {
  return {CFAbsoluteTimeGetCurrent() + kCFAbsoluteTimeIntervalSince1970};
}

}  // namespace zephlin
