#include <cerrno>
#include <csignal>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "Base/FileDescriptor.h"
#include "KeyboardService/Client/CommandLine.h"
#include "KeyboardService/Client/ServiceClient.h"
#include "KeyboardService/Protocol/Errors.h"

namespace zephlin {
namespace {

enum ExitStatus : int { Done = 0, Failed = 1, WrongUsage = 64 };

std::string run(const ShowHelp& /*command*/) {
  return commandHelp();
}

std::string run(const ShowVersion& /*command*/) {
  return "hidutil (Zephlin) " ZEPHLIN_VERSION "\n";
}

std::string run(const Invocation& invocation) {
  const std::string line = askService(invocation.socketPath, encode(invocation.request));
  try {
    return listing(invocation.request, decodeResponse(line));
  } catch (const ResponseError&) {
    throw RequestError(misunderstoodService(invocation.socketPath));
  }
}

void print(const std::string& text) {
  const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
  if (!written || std::fflush(stdout) != 0) {
    throw RequestError("cannot write to standard output" + errnoText(errno) +
                       "; check where it goes (any change asked for has been made)");
  }
}

int fail(const std::exception& error, ExitStatus status) {
  // One write for the whole line, so that it stays whole among other programs' lines.
  const std::string line = std::string("hidutil: ") + error.what() + '\n';
  std::fwrite(line.data(), 1, line.size(), stderr);
  return status;
}

int runCommandLine(const std::vector<std::string>& arguments) {
  try {
    print(std::visit([](const auto& each) { return run(each); }, parseCommandLine(arguments)));
    return Done;
  } catch (const UsageError& error) {
    return fail(error, WrongUsage);
  } catch (const std::exception& error) {
    return fail(error, Failed);
  }
}

}  // namespace
}  // namespace zephlin

int main(int argumentCount, char** arguments) {
  zephlin::openMissingStandardDescriptors();
  std::signal(SIGPIPE, SIG_IGN);
  return zephlin::runCommandLine(
      {arguments + (argumentCount > 0 ? 1 : 0), arguments + argumentCount});
}
