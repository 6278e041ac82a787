#include "KeyboardService/Client/CommandLine.h"

#include <algorithm>
#include <array>
#include <optional>

#include "KeyboardService/Protocol/Errors.h"
#include "KeyboardService/Protocol/Transport.h"

namespace zephlin {

const std::string_view commandHelp =
    R"(Usage: hidutil [--socket PATH] COMMAND

Commands:
  list [--matching JSON]                   list the keyboards
  property [--matching JSON] --get KEY     print a property of the keyboards
  property [--matching JSON] --set JSON    set properties, as in {"CapsLockDelayOverride":0}
  plug                                     plug in a virtual keyboard and print its RegistryID
  pull REGISTRYID                          pull out a virtual keyboard

Options:
  --matching JSON   choose keyboards, as in {"PrimaryUsagePage":1,"PrimaryUsage":6}; the keys are
                    PrimaryUsagePage, PrimaryUsage, VendorID, ProductID, Product and RegistryID
  --socket PATH     where zephlin-hidd listens; /run/zephlin/hidd.sock without this option
  -h, --help        print this help
  --version         print the version

Properties last until the keyboard goes or zephlin-hidd ends. root and users with an active local
login session may set, plug and pull; everyone may list and get.
)";

namespace {

/// The command line taken apart, before anything is made of it.
struct Words {
  std::optional<std::string> socket;
  std::optional<std::string> matching;
  std::optional<std::string> get;
  std::optional<std::string> set;
  std::vector<std::string> operands;
};

struct Option {
  std::string_view name;
  std::optional<std::string> Words::*value;
};

constexpr std::array options{
    Option{"--socket", &Words::socket},
    Option{"--matching", &Words::matching},
    Option{"--get", &Words::get},
    Option{"--set", &Words::set},
};

UsageError usageError(const std::string& what) {
  return UsageError(what + "; see hidutil --help");
}

const Option& optionNamed(const std::string& name) {
  const auto* const option = std::find_if(options.begin(), options.end(),
                                          [&](const Option& each) { return each.name == name; });
  if (option == options.end()) {
    throw usageError("unknown option " + inQuotes(name));
  }
  return *option;
}

void requireOnly(const Words& words, std::initializer_list<std::string_view> allowed) {
  for (const Option& each : options) {
    const bool takes = std::find(allowed.begin(), allowed.end(), each.name) != allowed.end();
    if (!takes && each.value != &Words::socket && words.*each.value) {
      throw usageError(inQuotes(words.operands.front()) + " takes no " + std::string(each.name));
    }
  }
}

void requireOperands(const Words& words, std::size_t count) {
  const std::size_t given = words.operands.size() - 1;
  if (given < count) {
    throw usageError(inQuotes(words.operands.front()) + " needs a RegistryID");
  }
  if (given > count) {
    throw usageError("unexpected argument " + inQuotes(words.operands.at(count + 1)));
  }
}

Matching matchingOf(const Words& words) {
  return words.matching ? parseMatching(*words.matching) : Matching{};
}

Request listRequest(const Words& words) {
  requireOnly(words, {"--matching"});
  requireOperands(words, 0);
  return ListRequest{matchingOf(words)};
}

Request propertyRequest(const Words& words) {
  requireOnly(words, {"--matching", "--get", "--set"});
  requireOperands(words, 0);
  if (words.get.has_value() == words.set.has_value()) {
    throw usageError(R"("property" needs either --get or --set)");
  }
  if (words.get) {
    requirePropertyKey(*words.get);
    return GetRequest{matchingOf(words), *words.get};
  }
  return SetRequest{matchingOf(words), parseProperties(*words.set)};
}

Request plugRequest(const Words& words) {
  requireOnly(words, {});
  requireOperands(words, 0);
  return PlugRequest{};
}

Request pullRequest(const Words& words) {
  requireOnly(words, {});
  requireOperands(words, 1);
  return PullRequest{parseRegistryID(words.operands.back())};
}

Request requestOf(const Words& words) {
  if (words.operands.empty()) {
    throw usageError("no command given");
  }
  const std::string& command = words.operands.front();
  if (command == "list") {
    return listRequest(words);
  }
  if (command == "property") {
    return propertyRequest(words);
  }
  if (command == "plug") {
    return plugRequest(words);
  }
  if (command == "pull") {
    return pullRequest(words);
  }
  throw usageError("unknown command " + inQuotes(command));
}

}  // namespace

Command parseCommandLine(const std::vector<std::string>& arguments) {
  Words words;
  for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
    if (*argument == "--help" || *argument == "-h") {
      return ShowHelp{};
    }
    if (*argument == "--version") {
      return ShowVersion{};
    }
    if (!argument->starts_with('-')) {
      words.operands.push_back(*argument);
      continue;
    }
    const Option& option = optionNamed(*argument);
    if (words.*option.value) {
      throw usageError("option " + *argument + " is given twice");
    }
    if (argument + 1 == arguments.end()) {
      throw usageError("option " + *argument + " needs a value");
    }
    words.*option.value = *++argument;
  }
  Request request = requestOf(words);
  return Invocation{words.socket.value_or(std::string(defaultSocketPath)), std::move(request)};
}

}  // namespace zephlin
