// The desktop tests' /usr/bin/hidutil: records when it was run and whether it sets a property,
// obeys the orders of HidutilRuns.h, and then becomes the built hidutil.

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <thread>

#include "Tests/Desktop/Harness/HidutilRuns.h"

namespace {

void record(bool sets) {
  const std::chrono::duration<double> now = std::chrono::steady_clock::now().time_since_epoch();
  char line[64];
  std::snprintf(line, sizeof line, "%.6f %d\n", now.count(), sets ? 1 : 0);
  std::ofstream(zephlin::test::hidutilRecordFile, std::ios::app) << line;
}

}  // namespace

int main(int argc, char* argv[]) {
  record(std::any_of(argv, argv + argc,
                     [](const char* word) { return std::string_view(word) == "--set"; }));
  if (std::filesystem::exists(zephlin::test::hidutilHoldFile)) {
    std::ofstream{zephlin::test::hidutilHeldFile};
  }
  while (std::filesystem::exists(zephlin::test::hidutilHoldFile)) {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  if (std::ifstream failure(zephlin::test::hidutilFailureFile); failure) {
    std::string line;
    std::getline(failure, line);
    std::puts(line.c_str());
    return 1;
  }
  ::execv(HIDUTIL_PROGRAM, argv);
  std::perror(HIDUTIL_PROGRAM);
  return 126;
}
