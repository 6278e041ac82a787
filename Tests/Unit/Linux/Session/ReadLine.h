#pragma once

#include <unistd.h>

#include <string>

#include "ZephlinCore/FileDescriptor.h"

namespace zephlin::test {

/// The first line that arrives, without its line feed.
inline std::string readLine(const FileDescriptor& descriptor) {
  std::string line;
  for (char character = 0; ::read(descriptor.get(), &character, 1) == 1 && character != '\n';) {
    line += character;
  }
  return line;
}

}  // namespace zephlin::test
