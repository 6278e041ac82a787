#pragma once

#import <Foundation/Foundation.h>
#include <objc/runtime.h>

namespace standins {

/// Exchanges the body of an instance method. As a global variable it does so before main; the class
/// is not made ready by that.
template <typename Result, typename... Arguments>
class ReplacedMethod {
 public:
  using Body = Result (*)(id self, SEL selector, Arguments... arguments);

  ReplacedMethod(const char* className, const char* selector, Body body)
      : original(reinterpret_cast<Body>(method_setImplementation(
            class_getInstanceMethod(static_cast<Class>(objc_getClass(className)),
                                    sel_registerName(selector)),
            reinterpret_cast<IMP>(body)))) {}

  const Body original;
};

}  // namespace standins
