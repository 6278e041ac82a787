#include "Tests/Desktop/Harness/Bundle.h"

#include <filesystem>

namespace zephlin::test {

namespace files = std::filesystem;

Bundle::Bundle() {
  const files::path bundle = folder_.file("Zephlin.app");
  files::create_directory(bundle);
  for (const char* file : {ZEPHLIN_PROGRAM, ZEPHLIN_MODULE}) {
    files::copy(file, bundle / files::path(file).filename());
  }
}

}  // namespace zephlin::test
