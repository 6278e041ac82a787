#include "KeyboardService/Check/Check.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <variant>

#include "KeyboardService/Check/Machine.h"
#include "KeyboardService/Client/ServiceClient.h"
#include "KeyboardService/Protocol/Container.h"
#include "KeyboardService/Protocol/Errors.h"
#include "KeyboardService/Protocol/Messages.h"
#include "KeyboardService/Service/EventLoop.h"
#include "KeyboardService/Service/KeyboardRegistry.h"

namespace zephlin {
namespace {

using Outlook = CheckedKeyboard::Outlook;

/// What the service says about itself and its keyboards.
struct Answer {
  std::string text;
  std::vector<Keyboard> keyboards = {};
  ServiceAnswers answers = ServiceAnswers::No;
};

Answer ask(const std::string& socketPath) {
  try {
    const Response response = decodeResponse(askService(socketPath, encode(ListRequest{})));
    if (const auto* const list = std::get_if<ListResponse>(&response)) {
      return {"answers at " + printable(socketPath) + " with " +
                  countedKeyboards(list->keyboards.size()),
              list->keyboards, ServiceAnswers::Yes};
    }
    if (const auto* const error = std::get_if<ErrorResponse>(&response)) {
      return {printable(error->text)};
    }
    return {misunderstoodService(socketPath)};
  } catch (const RequestError& error) {
    return {error.what()};
  } catch (const ResponseError&) {
    return {misunderstoodService(socketPath)};
  }
}

std::vector<KeyboardNode> presentKeyboards() {
  EventLoop loop;
  std::vector<KeyboardNode> found;
  KeyboardNodes nodes(loop);
  nodes.start([&found](const KeyboardNode& node) { found.push_back(node); }, [](dev_t) {});
  return found;
}

/// Which keyboards this user may change, and what the report says about that.
struct User {
  std::optional<ChangeableKeyboards> changeable = {};
  std::string text;
};

User thisUser() {
  const uid_t user = ::geteuid();
  try {
    const ChangeableKeyboards changeable = Permissions(0, loginsOf).requireChangeBy(user);
    return {changeable, user == 0 ? "root" : std::to_string(user) + ", who may change keyboards"};
  } catch (const RequestError& error) {
    return {std::nullopt, error.what()};
  }
}

std::string uinputText(const Finding& uinput) {
  switch (uinput.kind) {
    case Finding::Kind::Obstacle:
      return uinput.obstacle;
    case Finding::Kind::Unseen:
      return "/dev/uinput is not open to this user";
    default:
      return "/dev/uinput can be used";
  }
}

std::string ofAll(std::size_t count, std::size_t all) {
  return all == 1 ? "The only keyboard" : std::to_string(count) + " of " + countedKeyboards(all);
}

std::size_t count(const std::vector<CheckedKeyboard>& keyboards, Outlook outlook) {
  return static_cast<std::size_t>(
      std::count_if(keyboards.begin(), keyboards.end(),
                    [&](const CheckedKeyboard& each) { return each.outlook == outlook; }));
}

}  // namespace

std::string verdict(const std::vector<CheckedKeyboard>& keyboards, ServiceAnswers serviceAnswers,
                    const std::optional<std::string>& containerAdvice) {
  const std::size_t all = keyboards.size();
  if (all == 0) {
    return "There are no keyboards: " +
           containerAdvice.value_or("no device has Caps Lock and all letters") + ".\n";
  }
  std::string text;
  if (const std::size_t bad = count(keyboards, Outlook::NotInstant); bad > 0) {
    text += ofAll(bad, all) + " cannot be made instant: see above.\n";
  }
  if (const std::size_t unseen = count(keyboards, Outlook::Unseen); unseen > 0) {
    text += ofAll(unseen, all) + " can be checked by root only: run it with sudo.\n";
  }
  if (text.empty()) {
    text = (all == 1 ? "The only keyboard" : "All " + countedKeyboards(all)) +
           " can be made instant" +
           (serviceAnswers == ServiceAnswers::Yes ? "" : " once the service answers: see above") +
           ".\n";
  }
  return text;
}

CheckReport checkKeyboards(const std::string& socketPath) {
  const Answer service = ask(socketPath);
  const User user = thisUser();
  const Finding uinput = tryUinput();
  const std::vector<KeyboardNode> nodes = presentKeyboards();
  const auto states = statesOf(nodes, service.keyboards);
  std::vector<CheckedKeyboard> keyboards;
  for (std::size_t index = 0; index < nodes.size(); ++index) {
    keyboards.push_back(
        checkKeyboard(nodes[index], states[index], user.changeable, openForAMoment, uinput));
  }
  std::string text = "Zephlin:    " ZEPHLIN_VERSION;
  text += "\nSystem:     " + distribution() + ", " + kernel();
  text += "\nContainer:  " + container().value_or("no");
  text +=
      "\nSession:    " + session(loginsOf(loginUser()), std::getenv("SSH_CONNECTION") != nullptr);
  text += "\nUser:       " + user.text;
  text += "\nService:    " + service.text;
  text += "\nuinput:     " + uinputText(uinput);
  text += "\n\n" + (keyboards.empty() ? "" : keyboardTable(keyboards) + '\n');
  text += verdict(keyboards, service.answers, containerAdvice());
  return {text, !keyboards.empty() && count(keyboards, Outlook::Instant) == keyboards.size()};
}

}  // namespace zephlin
