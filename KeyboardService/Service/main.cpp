#include <sys/resource.h>
#include <systemd/sd-daemon.h>
#include <systemd/sd-id128.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "Base/FileDescriptor.h"
#include "KeyboardService/Check/Check.h"
#include "KeyboardService/Protocol/Errors.h"
#include "KeyboardService/Service/Clients/ListeningSocket.h"
#include "KeyboardService/Service/Clients/Server.h"
#include "KeyboardService/Service/CommandLine.h"
#include "KeyboardService/Service/Evdev/EvdevKeyboardBus.h"
#include "KeyboardService/Service/Evdev/GrabbedKeyboard.h"
#include "KeyboardService/Service/Evdev/KeyboardNodes.h"
#include "KeyboardService/Service/Evdev/WatchedKeyboard.h"
#include "KeyboardService/Service/EventLoop.h"
#include "KeyboardService/Service/KeyboardRegistry.h"
#include "KeyboardService/Service/Log.h"
#include "KeyboardService/Service/Permissions.h"
#include "KeyboardService/Service/PropertyStore.h"
#include "KeyboardService/Service/RequestHandler.h"
#include "KeyboardService/Service/VirtualKeyboardBus.h"

namespace zephlin {
namespace {

enum ExitStatus : int { Done = 0, Failed = 1, WrongUsage = 64 };

/// Every client takes a descriptor, and the usual soft limit is low for the sake of select().
void raiseDescriptorLimit() {
  rlimit limit{};
  if (::getrlimit(RLIMIT_NOFILE, &limit) == 0) {
    limit.rlim_cur = limit.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &limit);
  }
}

/// The machine's keyboards: watched or grabbed, each in its own thread.
EvdevKeyboardBus::Devices machineDevices(KeyboardNodes& nodes) {
  return {[&nodes](auto appeared, auto disappeared) {
            nodes.start(std::move(appeared), std::move(disappeared));
          },
          [](const KeyboardNode& node) {
            return [node](EventLoop& loop, KeyboardHandling::Report report,
                          const std::function<void()>& /*emergencyChord*/) {
              return std::make_unique<WatchedKeyboard>(loop, node, std::move(report));
            };
          },
          [](const KeyboardNode& node, CapsLockRule rule) {
            return [node, rule](EventLoop& loop, KeyboardHandling::Report report,
                                std::function<void()> emergencyChord) {
              return std::make_unique<GrabbedKeyboard>(loop, node, rule, std::move(report),
                                                       std::move(emergencyChord));
            };
          }};
}

/// The service with the keyboards of the machine.
class MachineKeyboards {
 public:
  MachineKeyboards(EventLoop& loop, const ServiceOptions& options, LimitedLog& log)
      : store_(options.statePath, bootID(), [&log](const std::string& line) { log.write(line); }),
        nodes_(loop),
        bus_(loop, machineDevices(nodes_), options.tapGap, [&log](const std::string& line) {
          log.during("the emergency chord", [&] { log.write(line); });
        }) {}

  void start(KeyboardRegistry& registry) {
    registry.keepIn(store_);
    bus_.start(registry);
  }

 private:
  /// Differs each time that the machine is started. Throws std::system_error.
  static std::string bootID() {
    sd_id128_t id{};
    if (const int result = sd_id128_get_boot(&id); result < 0) {
      throw std::system_error(-result, std::generic_category(), "the ID of the machine's start");
    }
    std::array<char, SD_ID128_STRING_MAX> text{};
    return sd_id128_to_string(id, text.data());
  }

  PropertyStore store_;
  KeyboardNodes nodes_;
  EvdevKeyboardBus bus_;
};

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

  LimitedLog log(loop, logToStandardError);
  KeyboardRegistry registry(log);
  VirtualKeyboardBus virtualKeyboards(options.virtualKeyboards.value_or(0));
  virtualKeyboards.start(registry);
  std::optional<MachineKeyboards> machineKeyboards;
  if (!options.virtualKeyboards) {
    machineKeyboards.emplace(loop, options, log).start(registry);
  }

  RequestHandler handler(loop, registry, virtualKeyboards, Permissions(::geteuid(), loginsOf), log);
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
    if (options.check) {
      const CheckReport report = checkKeyboards(options.socketPath);
      print(report.text);
      return report.canAllBeInstant ? Done : Failed;
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
