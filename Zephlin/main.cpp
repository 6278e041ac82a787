#include <string>
#include <vector>

#include "Zephlin/StartApplication.h"
#include "Zephlin/ZephlinCLI.h"

/// Runs the command that the first argument names, or else the application.
int main(int argc, char* argv[]) {
  const std::vector<std::string> cliArguments(argv + (argc > 0 ? 1 : 0), argv + argc);
  if (!cliArguments.empty()) {
    const std::string& first = cliArguments.front();
    if (zephlin::ZephlinCLI::knownCommands().contains(first) || !first.starts_with('-')) {
      return zephlin::ZephlinCLI::run(first);
    }
  }
  return zephlinStartApplication(argc, argv);
}
