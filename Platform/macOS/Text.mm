#import "Platform/macOS/Text.h"

namespace zephlin {

NSString* nativeText(std::string_view text) {
  return [[[NSString alloc] initWithBytes:text.data()
                                   length:text.size()
                                 encoding:NSUTF8StringEncoding] autorelease];
}

std::string portableText(NSString* text) {
  const char* const bytes = [text UTF8String];
  return bytes == nullptr ? std::string() : std::string(bytes);
}

}  // namespace zephlin
