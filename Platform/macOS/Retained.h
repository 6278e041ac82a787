#pragma once

#import <CoreFoundation/CoreFoundation.h>
#import <Foundation/Foundation.h>

#include <type_traits>
#include <utility>

namespace zephlin {

/// Owns one reference to an object of Objective-C's, Dispatch's or Core Foundation's. References
/// are counted by hand in this folder (-fno-objc-arc), and only here: everything that is kept is
/// kept in one of these.
template <typename Pointer>
class Retained {
 public:
  Retained() = default;
  /// Takes over the reference that the caller has from an alloc, a Create or a Copy.
  explicit Retained(Pointer owned) : pointer_(owned) {}
  /// Adds a reference of its own.
  static Retained retaining(Pointer pointer) {
    if constexpr (isObject) {
      return Retained([pointer retain]);
    } else {
      return Retained(pointer == nullptr ? nullptr : (CFRetain(pointer), pointer));
    }
  }
  Retained(const Retained& other) : Retained(retaining(other.pointer_)) {}
  Retained(Retained&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
  Retained& operator=(const Retained& other) { return *this = Retained(other); }
  Retained& operator=(Retained&& other) noexcept {
    std::swap(pointer_, other.pointer_);
    return *this;
  }
  ~Retained() {
    if constexpr (isObject) {
      [pointer_ release];
    } else if (pointer_ != nullptr) {
      CFRelease(pointer_);
    }
  }

  [[nodiscard]] Pointer get() const { return pointer_; }
  explicit operator bool() const { return pointer_ != nullptr; }

 private:
  static constexpr bool isObject = std::is_convertible_v<Pointer, id>;

  Pointer pointer_ = nullptr;
};

/// What is autoreleased while this lives is released when it goes. The pools of a thread nest.
class AutoreleasePool {
 public:
  AutoreleasePool() = default;
  AutoreleasePool(const AutoreleasePool&) = delete;
  AutoreleasePool& operator=(const AutoreleasePool&) = delete;
  ~AutoreleasePool() { [pool_ drain]; }

 private:
  NSAutoreleasePool* pool_ = [[NSAutoreleasePool alloc] init];
};

}  // namespace zephlin
