#pragma once

#include <filesystem>
#include <string>

#include "Tests/Support/TemporaryDirectory.h"

namespace zephlin::test {

/// The built application in a folder Zephlin.app of its own.
class Bundle {
 public:
  Bundle() {
    namespace files = std::filesystem;
    const files::path bundle = folder_.file("Zephlin.app");
    files::create_directory(bundle);
    for (const char* file : {ZEPHLIN_PROGRAM, ZEPHLIN_MODULE}) {
      files::copy(file, bundle / files::path(file).filename());
    }
  }

  [[nodiscard]] std::string program() const { return folder_.file("Zephlin.app/Zephlin"); }

 private:
  TemporaryDirectory folder_;
};

}  // namespace zephlin::test
