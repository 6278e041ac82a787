#pragma once

#include <string_view>

namespace zephlin {

/// Whether `bytes` is well-formed UTF-8 as RFC 3629 defines it: no overlong form, no surrogate,
/// nothing above U+10FFFF. NUL is a character like any other. Any thread.
bool isValidUtf8(std::string_view bytes);

}  // namespace zephlin
