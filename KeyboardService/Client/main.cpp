#include <cerrno>
#include <csignal>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "Base/FileDescriptor.h"
#include "KeyboardService/Client/CommandLine.h"
#include "KeyboardService/Client/Listing.h"
#include "KeyboardService/Client/ServiceClient.h"
#include "KeyboardService/Protocol/Container.h"
#include "KeyboardService/Protocol/Errors.h"

namespace zephlin {
namespace {

enum ExitStatus : int { Done = 0, Failed = 1, WrongUsage = 64 };

void print(const std::string& text) {
  const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
  if (!written || std::fflush(stdout) != 0) {
    throw RequestError("cannot write to standard output" + errnoText(errno) +
                       "; check where it goes (any change asked for has been made)");
  }
}

void complain(const std::string& text) {
  // One write for the whole line, so that it stays whole among other programs' lines.
  const std::string line = "hidutil: " + text + '\n';
  std::fwrite(line.data(), 1, line.size(), stderr);
}

ExitStatus run(const ShowHelp& /*command*/) {
  print(commandHelp());
  return Done;
}

ExitStatus run(const ShowVersion& /*command*/) {
  print("hidutil (Zephlin) " ZEPHLIN_VERSION "\n");
  return Done;
}

ExitStatus show(const Request& request, const Response& response) {
  print(listing(request, response));
  const auto* const set = std::get_if<SetResponse>(&response);
  if (set == nullptr) {
    return Done;
  }
  if (set->keyboards.empty() && set->unset.empty()) {
    complain("no keyboard matches; " +
             containerAdvice().value_or(R"("zephlin-hidd --check" as root says what there is)"));
  }
  for (const std::string& each : complaints(*set)) {
    complain(each);
  }
  return hasFailed(*set) ? Failed : Done;
}

ExitStatus run(const Invocation& invocation) {
  const std::string line = askService(invocation.socketPath, encode(invocation.request));
  try {
    return show(invocation.request, decodeResponse(line));
  } catch (const ResponseError&) {
    throw RequestError(misunderstoodService(invocation.socketPath));
  }
}

int runCommandLine(const std::vector<std::string>& arguments) {
  try {
    return std::visit([](const auto& each) { return run(each); }, parseCommandLine(arguments));
  } catch (const UsageError& error) {
    complain(error.what());
    return WrongUsage;
  } catch (const std::exception& error) {
    complain(error.what());
    return Failed;
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
