#include <sched.h>
#include <sys/resource.h>
#include <systemd/sd-daemon.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <exception>
#include <optional>
#include <string>
#include <vector>

#include "Base/FileDescriptor.h"
#include "KeyboardService/Protocol/Errors.h"
#include "KeyboardService/Service/Clients/ListeningSocket.h"
#include "KeyboardService/Service/Clients/Server.h"
#include "KeyboardService/Service/CommandLine.h"
#include "KeyboardService/Service/Evdev/EvdevKeyboardBus.h"
#include "KeyboardService/Service/EventLoop.h"
#include "KeyboardService/Service/KeyboardRegistry.h"
#include "KeyboardService/Service/Log.h"
#include "KeyboardService/Service/Permissions.h"
#include "KeyboardService/Service/RequestHandler.h"
#include "KeyboardService/Service/VirtualKeyboardBus.h"

namespace zephlin {
namespace {

enum ExitStatus : int { Done = 0, Failed = 1, WrongUsage = 64 };

/// Runs ahead of ordinary processes, so that keys are not late when the machine is busy. Everything
/// works without it too, where the system does not allow it.
void takeRealTimePriority() {
  sched_param parameters{};
  parameters.sched_priority = 1;  // Before ordinary processes, after other real-time ones.
  ::sched_setscheduler(0, SCHED_RR | SCHED_RESET_ON_FORK, &parameters);
}

/// Every client takes a descriptor, and the usual soft limit is low for the sake of select().
void raiseDescriptorLimit() {
  rlimit limit{};
  if (::getrlimit(RLIMIT_NOFILE, &limit) == 0) {
    limit.rlim_cur = limit.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &limit);
  }
}

void serve(const ServiceOptions& options) {
  raiseDescriptorLimit();
  EventLoop loop;
  loop.stopOnSignal(SIGTERM);
  loop.stopOnSignal(SIGINT);

  auto listening = takeActivationSocket();
  std::optional<BoundSocket> bound;
  if (!listening) {
    listening = bound.emplace(options.socketPath).takeDescriptor();
  }
  const std::string ready = "ready on " + boundPath(*listening) + " with ";

  KeyboardRegistry registry(logToStandardError);
  VirtualKeyboardBus virtualKeyboards(options.virtualKeyboards.value_or(0));
  virtualKeyboards.start(registry);
  std::optional<EvdevKeyboardBus> machineKeyboards;
  if (!options.virtualKeyboards) {
    takeRealTimePriority();
    machineKeyboards.emplace(loop, options.tapGap, logToStandardError).start(registry);
  }

  const Permissions permissions(::geteuid(), hasActiveLocalLoginSession);
  RequestHandler handler(registry, virtualKeyboards, permissions, logToStandardError);
  Server server(
      loop, std::move(*listening),
      [&handler](std::string_view line, uid_t user, const Server::Reply& reply) {
        handler.respond(line, user, reply);
      },
      ServerLimits{});
  registry.onAppeared([&server](RegistryID registryID) { server.announce({registryID}); });

  logToStandardError(ready + countedKeyboards(registry.size()));
  sd_notify(0, "READY=1");
  loop.run();
  sd_notify(0, "STOPPING=1");
}

int print(std::string_view text) {
  const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
  if (!written || std::fflush(stdout) != 0) {
    throw RequestError("cannot write to standard output" + errnoText(errno) +
                       "; check where it goes");
  }
  return Done;
}

int runCommandLine(const std::vector<std::string>& arguments) {
  try {
    const ServiceOptions options = parseServiceCommandLine(arguments);
    if (options.showHelp) {
      return print(serviceHelp);
    }
    if (options.showVersion) {
      return print("zephlin-hidd (Zephlin) " ZEPHLIN_VERSION "\n");
    }
    serve(options);
    return Done;
  } catch (const UsageError& error) {
    logToStandardError(error.what());
    return WrongUsage;
  } catch (const std::exception& error) {
    logToStandardError(error.what());
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
