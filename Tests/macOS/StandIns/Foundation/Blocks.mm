#include <Block.h>
#import <Foundation/Foundation.h>

#include <cstring>

// On macOS a block is an object. Here its class pointer leads to an empty array of
// libBlocksRuntime's, which comes before GNUstep's own array of that name when linking; once the
// class below is copied there, blocks answer to what objects of Foundation are asked.

extern "C" {
extern void* _NSConcreteStackBlock[32];
extern void* _NSConcreteMallocBlock[32];
extern void* _NSConcreteGlobalBlock[32];
}

@interface StandInBlock : NSObject
@end

@implementation StandInBlock

+ (void)load {
  // Its method table is made by the first message.
  [[[self alloc] init] dealloc];
  // The fields of a class of GCC's runtime (objc-private/module-abi-8.h).
  constexpr size_t classBytes = 17 * sizeof(void*);
  static_assert(classBytes <= sizeof _NSConcreteStackBlock);
  std::memcpy(_NSConcreteStackBlock, static_cast<void*>(self), classBytes);
  std::memcpy(_NSConcreteMallocBlock, static_cast<void*>(self), classBytes);
  std::memcpy(_NSConcreteGlobalBlock, static_cast<void*>(self), classBytes);
}

- (id)copy {
  return static_cast<id>(_Block_copy(self));
}

- (id)copyWithZone:(NSZone*)zone {
  (void)zone;
  return [self copy];
}

- (id)retain {
  return [self copy];
}

- (oneway void)release {
  _Block_release(self);
}

- (id)autorelease {
  [NSAutoreleasePool addObject:self];
  return self;
}

@end
