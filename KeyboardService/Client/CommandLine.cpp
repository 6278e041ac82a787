#include "KeyboardService/Client/CommandLine.h"

#include <algorithm>
#include <array>
#include <optional>

#include "KeyboardService/Client/Listing.h"
#include "KeyboardService/Protocol/Errors.h"
#include "KeyboardService/Protocol/Transport.h"

namespace zephlin {
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

constexpr std::string_view operandName = "REGISTRYID";

/// One command: what it looks like, what it asks for and how the answer is printed. Where several
/// have the same word, `selector` is the option that tells them apart.
struct CommandForm {
  std::string_view usage;
  std::string_view help;
  std::optional<std::string> Words::*selector;
  Request (*request)(const Words& words);
  std::optional<std::string> (*print)(const Request& request, const Response& response);

  [[nodiscard]] std::string_view word() const { return usage.substr(0, usage.find(' ')); }
  [[nodiscard]] bool takes(std::string_view argument) const {
    return usage.find(argument) != std::string_view::npos;
  }
};

Matching matchingOf(const Words& words) {
  return words.matching ? parseMatching(*words.matching) : Matching{};
}

/// Nothing if they are not a request and a response of these types.
template <typename SomeRequest, typename SomeResponse>
std::optional<std::string> printed(const Request& request, const Response& response) {
  const auto* const asked = std::get_if<SomeRequest>(&request);
  const auto* const answered = std::get_if<SomeResponse>(&response);
  return asked != nullptr && answered != nullptr ? std::optional(listing(*asked, *answered))
                                                 : std::nullopt;
}

constexpr std::array commands{
    CommandForm{"list [--matching JSON]", "list the keyboards", nullptr,
                [](const Words& words) -> Request { return ListRequest{matchingOf(words)}; },
                printed<ListRequest, ListResponse>},
    CommandForm{"property [--matching JSON] --get KEY", "print a property of the keyboards",
                &Words::get,
                [](const Words& words) -> Request {
                  requirePropertyKey(*words.get);
                  return GetRequest{matchingOf(words), *words.get};
                },
                printed<GetRequest, GetResponse>},
    CommandForm{"property [--matching JSON] --set JSON",
                R"(set properties, as in {"CapsLockDelayOverride":0})", &Words::set,
                [](const Words& words) -> Request {
                  return SetRequest{matchingOf(words), parseProperties(*words.set)};
                },
                printed<SetRequest, SetResponse>},
    CommandForm{"plug", "plug in a virtual keyboard and print its RegistryID", nullptr,
                [](const Words&) -> Request { return PlugRequest{}; },
                printed<PlugRequest, PlugResponse>},
    CommandForm{"pull REGISTRYID", "pull out a virtual keyboard", nullptr,
                [](const Words& words) -> Request {
                  return PullRequest{parseRegistryID(words.operands.back())};
                },
                printed<PullRequest, PullResponse>},
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

std::string joined(const std::vector<const CommandForm*>& forms) {
  std::string names;
  for (const Option& each : options) {
    const bool selects = std::any_of(forms.begin(), forms.end(), [&](const CommandForm* form) {
      return form->selector == each.value;
    });
    names += selects ? (names.empty() ? "" : " or ") + std::string(each.name) : "";
  }
  return names;
}

void requireArguments(const Words& words, const std::vector<const CommandForm*>& forms) {
  const std::string command = inQuotes(words.operands.front());
  const auto someTakes = [&](std::string_view argument) {
    return std::any_of(forms.begin(), forms.end(),
                       [&](const CommandForm* form) { return form->takes(argument); });
  };
  for (const Option& each : options) {
    if (each.value != &Words::socket && words.*each.value && !someTakes(each.name)) {
      throw usageError(command + " takes no " + std::string(each.name));
    }
  }
  const std::size_t count = someTakes(operandName) ? 2 : 1;
  if (words.operands.size() < count) {
    throw usageError(command + " needs a RegistryID");
  }
  if (words.operands.size() > count) {
    throw usageError("unexpected argument " + inQuotes(words.operands.at(count)));
  }
}

const CommandForm& formOf(const Words& words) {
  if (words.operands.empty()) {
    throw usageError("no command given");
  }
  std::vector<const CommandForm*> forms;
  for (const CommandForm& each : commands) {
    if (each.word() == words.operands.front()) {
      forms.push_back(&each);
    }
  }
  if (forms.empty()) {
    throw usageError("unknown command " + inQuotes(words.operands.front()));
  }
  requireArguments(words, forms);
  const auto isSelected = [&](const CommandForm* form) {
    return form->selector == nullptr || words.*form->selector;
  };
  if (std::count_if(forms.begin(), forms.end(), isSelected) != 1) {
    throw usageError(inQuotes(words.operands.front()) + " needs either " + joined(forms));
  }
  return **std::find_if(forms.begin(), forms.end(), isSelected);
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
  return Invocation{words.socket.value_or(std::string(defaultSocketPath)),
                    formOf(words).request(words)};
}

std::string listing(const Request& request, const Response& response) {
  if (const auto* const error = std::get_if<ErrorResponse>(&response)) {
    throw RequestError(printable(error->text));
  }
  for (const CommandForm& each : commands) {
    if (auto text = each.print(request, response)) {
      return *text;
    }
  }
  throw ResponseError("the response does not belong to the request");
}

std::string commandHelp() {
  constexpr std::size_t usageWidth = 41;
  std::string help = "Usage: hidutil [--socket PATH] COMMAND\n\nCommands:\n";
  for (const CommandForm& each : commands) {
    std::string usage(each.usage);
    usage.resize(usageWidth, ' ');
    help += "  " + usage + std::string(each.help) + '\n';
  }
  return help + R"(
Options:
  --matching JSON   choose keyboards, as in {"PrimaryUsagePage":1,"PrimaryUsage":6}; the keys are
                    PrimaryUsagePage, PrimaryUsage, VendorID, ProductID, Product and RegistryID
  --socket PATH     where zephlin-hidd listens; /run/zephlin/hidd.sock by default
  -h, --help        print this help
  --version         print the version

Properties last until the keyboard is unplugged or the machine restarts. root and users with an active
local login session may set, plug and pull; everyone may list and get.
)";
}

}  // namespace zephlin
