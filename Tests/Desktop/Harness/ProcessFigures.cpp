#include "Tests/Desktop/Harness/ProcessFigures.h"

#include <filesystem>
#include <fstream>
#include <limits>
#include <string>

namespace zephlin::test {
namespace {

/// The number behind a name in a file of lines with a name and a number.
long numberIn(const std::filesystem::path& file, const std::string& name) {
  std::ifstream stream(file);
  for (std::string word; stream >> word;) {
    long number = 0;
    if (word == name && stream >> number) {
      return number;
    }
    stream.clear();
    stream.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
  }
  return 0;
}

std::filesystem::path folderOf(pid_t process) {
  return "/proc/" + std::to_string(process);
}

}  // namespace

MemoryFigures memoryOf(pid_t process) {
  const auto file = folderOf(process) / "smaps_rollup";
  return {numberIn(file, "Rss:"), numberIn(file, "Pss:")};
}

long wakeUpsOf(pid_t process) {
  long sum = 0;
  for (const auto& thread : std::filesystem::directory_iterator(folderOf(process) / "task")) {
    sum += numberIn(thread.path() / "status", "voluntary_ctxt_switches:");
  }
  return sum;
}

}  // namespace zephlin::test
