#include "Platform/Linux/Watching/CapsLockLeds.h"

#include <filesystem>
#include <fstream>
#include <system_error>

namespace zephlin {

namespace {

bool isOn(const std::filesystem::path& led) {
  int brightness = 0;
  return std::ifstream(led / "brightness") >> brightness && brightness > 0;
}

}  // namespace

bool isAnyCapsLockLedOn(const std::string& ledFolder) {
  std::error_code error;
  std::filesystem::directory_iterator led(ledFolder, error);
  while (!error && led != std::filesystem::directory_iterator()) {
    if (led->path().string().ends_with("::capslock") && isOn(led->path())) {
      return true;
    }
    led.increment(error);
  }
  return false;
}

}  // namespace zephlin
