#include "KeyboardService/Check/CheckedKeyboard.h"

#include <linux/input.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <system_error>

#include "KeyboardService/Client/Listing.h"
#include "KeyboardService/Protocol/Errors.h"
#include "KeyboardService/Service/Evdev/EventNode.h"
#include "KeyboardService/Service/Evdev/KeyboardHolder.h"
#include "KeyboardService/Service/Evdev/KeyboardWay.h"
#include "KeyboardService/Service/Evdev/UinputKeyboard.h"

namespace zephlin {
namespace {

using Kind = Finding::Kind;
using Outlook = CheckedKeyboard::Outlook;

/// Another user, the service's or root, may be able to use it.
bool isClosedToThisUser(const std::string& device) {
  return ::geteuid() != 0 && ::access(device.c_str(), R_OK | W_OK) != 0 && errno == EACCES;
}

std::string describe(KeyboardWay way) {
  return way == KeyboardWay::Watched ? "watched" : "grabbed: it has no Caps Lock LED";
}

/// Both numbers as lsusb prints them: "046d:c31c".
std::string identity(const KeyboardDescription& description) {
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "%04llx:%04llx",
                static_cast<unsigned long long>(description.vendorID),
                static_cast<unsigned long long>(description.productID));
  return text.data();
}

bool isSameKind(const KeyboardDescription& left, const KeyboardDescription& right) {
  return left.vendorID == right.vendorID && left.productID == right.productID &&
         left.product == right.product && left.transport == right.transport &&
         left.seat == right.seat;
}

}  // namespace

Finding openForAMoment(const KeyboardNode& node) {
  if (isClosedToThisUser(node.path)) {
    return {Kind::Unseen};
  }
  try {
    EventNode opened(node.path);
    opened.letIn(EV_SYN, {});
    if (opened.hearsProbe()) {
      return {};
    }
    return {Kind::Obstacle, std::string(heldByAnother) + holderOf(node.path)};
  } catch (const std::system_error& error) {
    const bool isThere = ::access(node.path.c_str(), F_OK) == 0;
    return {Kind::Obstacle, isThere ? printable(error.what()) : "there is no " + node.path};
  } catch (const RequestError& error) {
    return {Kind::Obstacle, error.what()};
  }
}

Finding tryUinput() {
  if (isClosedToThisUser("/dev/uinput")) {
    return {Kind::Unseen};
  }
  try {
    UinputKeyboard::requireUinput();
    return {};
  } catch (const RequestError& error) {
    return {Kind::Obstacle, error.what()};
  }
}

CheckedKeyboard checkKeyboard(const KeyboardNode& node, const std::optional<std::string>& state,
                              const std::optional<ChangeableKeyboards>& changeable,
                              const std::function<Finding(const KeyboardNode&)>& open,
                              const Finding& uinput) {
  const auto impossible = [&](const std::string& obstacle) {
    return CheckedKeyboard{node, state, Outlook::NotInstant, "not possible: " + obstacle};
  };
  const KeyboardWay way = wayFor(node, std::chrono::milliseconds::zero());
  if (way == KeyboardWay::Impossible) {
    return impossible(whyImpossible(node));
  }
  if (changeable && !changeable->includes(node.description.seat)) {
    return impossible(notOnYourSeat);
  }
  const bool isUsedByService = state == "watched" || state == "grabbed";
  if (state && !isUsedByService && state != "default") {
    return impossible("see \"Now\"");
  }
  const Finding found = isUsedByService ? Finding{} : open(node);
  const Finding clone = way == KeyboardWay::Grabbed && state != "grabbed" ? uinput : Finding{};
  for (const Finding& each : {found, clone}) {
    if (each.kind == Kind::Obstacle) {
      return impossible(each.obstacle);
    }
  }
  if (found.kind == Kind::Unseen || clone.kind == Kind::Unseen) {
    return {node, state, Outlook::Unseen, describe(way) + ", as far as this user can see"};
  }
  return {node, state, Outlook::Instant, describe(way)};
}

std::vector<std::optional<std::string>> statesOf(const std::vector<KeyboardNode>& nodes,
                                                 std::vector<Keyboard> listed) {
  std::vector<std::optional<std::string>> states;
  for (const KeyboardNode& node : nodes) {
    const auto found = std::find_if(listed.begin(), listed.end(), [&](const Keyboard& each) {
      return isSameKind(each.description, node.description);
    });
    if (found == listed.end()) {
      states.emplace_back();
    } else {
      states.emplace_back(found->state);
      listed.erase(found);
    }
  }
  return states;
}

std::string keyboardTable(const std::vector<CheckedKeyboard>& keyboards) {
  std::vector<std::vector<std::string>> rows{
      {"Node", "Product", "IDs", "Transport", "Seat", "Now", "With a delay of 0"}};
  for (const auto& [node, state, outlook, text] : keyboards) {
    const KeyboardDescription& description = node.description;
    rows.push_back({node.path, printable(description.product), identity(description),
                    description.transport, printable(description.seat),
                    printable(state.value_or("-")), printable(text)});
  }
  return table(rows);
}

}  // namespace zephlin
