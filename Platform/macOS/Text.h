#pragma once

#import <Foundation/Foundation.h>

#include <string>
#include <string_view>

namespace zephlin {

/// The text, which is UTF-8, as an autoreleased string. Any thread.
NSString* nativeText(std::string_view text);

/// The string as UTF-8; empty for nil. Any thread.
std::string portableText(NSString* text);

}  // namespace zephlin
