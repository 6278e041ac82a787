#pragma once

#include <functional>
#include <string>

namespace zephlin::test {

/// What the work's exception says; empty where it throws none. Not inline: Clang with GCC's runtime
/// catches no exception of C++ in Objective-C++.
std::string thrownBy(const std::function<void()>& work);

/// The domain and the code of the work's NativeError, as "domain code".
std::string nativeErrorOf(const std::function<void()>& work);

}  // namespace zephlin::test
