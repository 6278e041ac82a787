#import <CoreFoundation/CoreFoundation.h>
#import <Foundation/Foundation.h>

#import "StandIns/CallLog.h"
#import "StandIns/CoreFoundation/MachPort.h"
#import "StandIns/Time.h"

const CFAllocatorRef kCFAllocatorDefault = nullptr;
const CFRunLoopMode kCFRunLoopDefaultMode =
    reinterpret_cast<CFRunLoopMode>(@"kCFRunLoopDefaultMode");
const CFTimeInterval kCFAbsoluteTimeIntervalSince1970 = 978307200.0;

namespace {

constexpr CFTypeID booleanType = 21;
constexpr CFTypeID anyOtherType = 1;

NSString* name(CFStringRef text) {
  return reinterpret_cast<NSString*>(text);
}

}  // namespace

CFTypeRef CFRetain(CFTypeRef cf) {
  return [static_cast<id>(const_cast<void*>(cf)) retain];
}

void CFRelease(CFTypeRef cf) {
  [static_cast<id>(const_cast<void*>(cf)) release];
}

// The class of @(YES), other than that of numbers.
CFTypeID CFGetTypeID(CFTypeRef cf) {
  const id object = static_cast<id>(const_cast<void*>(cf));
  return [object isKindOfClass:[[NSNumber numberWithBool:YES] class]] ? booleanType : anyOtherType;
}

CFTypeID CFBooleanGetTypeID(void) {
  return booleanType;
}

CFAbsoluteTime CFAbsoluteTimeGetCurrent(void) {
  return standins::wallTimeSince1970() - kCFAbsoluteTimeIntervalSince1970;
}

CFRunLoopRef CFRunLoopGetMain(void) {
  return reinterpret_cast<CFRunLoopRef>([NSRunLoop mainRunLoop]);
}

void CFRunLoopAddSource(CFRunLoopRef rl, CFRunLoopSourceRef source, CFRunLoopMode mode) {
  standins::record("CFRunLoopAddSource(%s, %s)", rl == CFRunLoopGetMain() ? "main" : "?",
                   [name(mode) UTF8String]);
  reinterpret_cast<StandInRunLoopSource*>(source)->_isScheduled = YES;
}

void CFRunLoopRemoveSource(CFRunLoopRef rl, CFRunLoopSourceRef source, CFRunLoopMode mode) {
  standins::record("CFRunLoopRemoveSource(%s, %s)", rl == CFRunLoopGetMain() ? "main" : "?",
                   [name(mode) UTF8String]);
  reinterpret_cast<StandInRunLoopSource*>(source)->_isScheduled = NO;
}

CFRunLoopSourceRef CFMachPortCreateRunLoopSource(CFAllocatorRef allocator, CFMachPortRef port,
                                                 CFIndex order) {
  (void)allocator;
  standins::record("CFMachPortCreateRunLoopSource(%ld)", order);
  StandInMachPort* const machPort = reinterpret_cast<StandInMachPort*>(port);
  StandInRunLoopSource* const source = [[StandInRunLoopSource alloc] init];
  machPort->_source = source;
  return reinterpret_cast<CFRunLoopSourceRef>(source);
}

@implementation StandInRunLoopSource
@end

@implementation StandInMachPort
@end
