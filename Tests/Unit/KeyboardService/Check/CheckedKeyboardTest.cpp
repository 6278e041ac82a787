#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <stdexcept>

#include "KeyboardService/Check/Check.h"
#include "KeyboardService/Check/CheckedKeyboard.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/TestProcess.h"

namespace zephlin {
namespace {

using Kind = Finding::Kind;
using Outlook = CheckedKeyboard::Outlook;
using State = std::optional<std::string>;

KeyboardNode keyboard(bool hasCapsLockLed, const char* seat = "seat0") {
  KeyboardNode node;
  node.path = "/dev/input/event3";
  node.hasCapsLockLed = hasCapsLockLed;
  node.description.vendorID = 0x46d;
  node.description.productID = 0xc31c;
  node.description.product = "Board";
  node.description.transport = "USB";
  node.description.seat = seat;
  return node;
}

const KeyboardNode withLed = keyboard(true);
const KeyboardNode withoutLed = keyboard(false);

const Finding nothing;
const Finding unseen{Kind::Unseen};
const Finding held{Kind::Obstacle, "held by another program: keyd (pid 412)"};
const Finding noUinput{Kind::Obstacle, "cannot use /dev/uinput"};

CheckedKeyboard check(const KeyboardNode& node, const State& state, const Finding& opened,
                      const Finding& uinput) {
  return checkKeyboard(
      node, state, ChangeableKeyboards::all(), [&](const KeyboardNode&) { return opened; }, uinput);
}

TEST(CheckedKeyboard, IsHandledAsTheServiceWouldUnlessSomethingIsInTheWay) {
  struct Case {
    KeyboardNode node;
    State state;
    Finding opened;
    Finding uinput;
    Outlook outlook;
    const char* text;
  };
  for (const Case& each : {
           Case{withLed, {}, nothing, noUinput, Outlook::Instant, "watched"},
           Case{withLed, "default", nothing, nothing, Outlook::Instant, "watched"},
           Case{withoutLed,
                {},
                nothing,
                nothing,
                Outlook::Instant,
                "grabbed: it has no Caps Lock LED"},
           Case{withoutLed,
                {},
                nothing,
                noUinput,
                Outlook::NotInstant,
                "not possible: cannot use /dev/uinput"},
           Case{withLed, "default", held, nothing, Outlook::NotInstant,
                "not possible: held by another program: keyd (pid 412)"},
           Case{withoutLed,
                {},
                held,
                noUinput,
                Outlook::NotInstant,
                "not possible: held by another program: keyd (pid 412)"},
           // What the service holds itself is not opened.
           Case{withLed, "watched", held, noUinput, Outlook::Instant, "watched"},
           Case{withLed, "grabbed", held, noUinput, Outlook::Instant, "watched"},
           Case{withoutLed, "grabbed", held, noUinput, Outlook::Instant,
                "grabbed: it has no Caps Lock LED"},
           Case{withLed, "does not answer", nothing, nothing, Outlook::NotInstant,
                "not possible: see \"Now\""},
           Case{withLed,
                {},
                unseen,
                unseen,
                Outlook::Unseen,
                "watched, as far as this user can see"},
           Case{withoutLed,
                {},
                nothing,
                unseen,
                Outlook::Unseen,
                "grabbed: it has no Caps Lock LED, as far as this user can see"},
           Case{withLed, "watched", unseen, unseen, Outlook::Instant, "watched"},
           Case{keyboard(false, "seat1"),
                {},
                nothing,
                nothing,
                Outlook::NotInstant,
                "not possible: on seat1, which cannot have a clone"},
           Case{keyboard(true, "seat1"), {}, nothing, nothing, Outlook::Instant, "watched"},
       }) {
    const CheckedKeyboard checked = check(each.node, each.state, each.opened, each.uinput);
    EXPECT_EQ(checked.text, each.text);
    EXPECT_EQ(checked.outlook, each.outlook) << each.text;
  }
}

TEST(CheckedKeyboard, BelongsToTheSeatOfItsUser) {
  const auto textFor = [](const std::optional<ChangeableKeyboards>& changeable) {
    return checkKeyboard(
               withLed, "default", changeable, [](const KeyboardNode&) { return Finding{}; },
               nothing)
        .text;
  };
  EXPECT_EQ(textFor(ChangeableKeyboards::atSeats({"seat0"})), "watched");
  EXPECT_EQ(textFor(ChangeableKeyboards::atSeats({"seat1"})), "not possible: not on your seat");
  // Who may change none is told so once.
  EXPECT_EQ(textFor(std::nullopt), "watched");
}

TEST(CheckedKeyboard, IsNotOpenedIfTheServiceHasIt) {
  for (const char* const state : {"watched", "grabbed", "does not answer"}) {
    checkKeyboard(
        withoutLed, state, ChangeableKeyboards::all(),
        [&](const KeyboardNode&) {
          ADD_FAILURE() << state;
          return Finding{};
        },
        nothing);
  }
}

TEST(CheckedKeyboard, ThatCannotBeOpenedSaysWhy) {
  KeyboardNode node;
  node.path = "/absent";
  EXPECT_EQ(openForAMoment(node).obstacle, "there is no /absent");
  node.path = "/dev";
  EXPECT_EQ(openForAMoment(node).obstacle, "cannot open /dev (Is a directory)");
}

TEST(CheckedKeyboard, IsUnseenIfOnlyRootMayOpenIt) {
  const test::TemporaryDirectory directory;
  KeyboardNode node;
  node.path = directory.file("event3");
  std::ofstream(node.path) << "";
  std::filesystem::permissions(node.path, std::filesystem::perms::none);
  test::TestProcess child([&] {
    if (::geteuid() == 0 && ::setresuid(4242, 4242, 4242) != 0) {
      throw std::runtime_error("cannot become another user");
    }
    std::puts(openForAMoment(node).kind == Kind::Unseen ? "unseen" : "seen");
    std::fflush(stdout);
  });
  EXPECT_EQ(child.wait(), (test::Outcome{0, "unseen\n", ""}));
}

TEST(CheckedKeyboard, HasTheStateThatTheServiceListsForItsKind) {
  const auto listed = [](const KeyboardNode& node, const char* state) {
    return Keyboard{RegistryID{1}, node.description, state};
  };
  KeyboardNode other = withLed;
  other.description.productID = 1;
  EXPECT_EQ(statesOf({withLed, other}, {}), (std::vector<State>{{}, {}}));
  EXPECT_EQ(statesOf({withLed, other}, {listed(other, "grabbed"), listed(withLed, "watched")}),
            (std::vector<State>{"watched", "grabbed"}));
  EXPECT_EQ(statesOf({withLed, withLed, withLed},
                     {listed(withLed, "watched"), listed(withLed, "default")}),
            (std::vector<State>{"watched", "default", {}}));
}

TEST(CheckedKeyboard, HasALineInTheTable) {
  EXPECT_EQ(keyboardTable({check(withLed, "default", nothing, nothing),
                           check(keyboard(false), {}, nothing, noUinput)}),
            "Node                Product   IDs         Transport   Seat    Now       With a delay "
            "of 0\n"
            "/dev/input/event3   Board     046d:c31c   USB         seat0   default   watched\n"
            "/dev/input/event3   Board     046d:c31c   USB         seat0   -         not possible: "
            "cannot use /dev/uinput\n");
}

TEST(Verdict, CountsWhatCannotBeInstantOrCannotBeSeen) {
  const CheckedKeyboard good = check(withLed, {}, nothing, nothing);
  const CheckedKeyboard bad = check(withLed, {}, held, nothing);
  const CheckedKeyboard hidden = check(withLed, {}, unseen, nothing);
  const auto of = [](const std::vector<CheckedKeyboard>& keyboards) {
    return verdict(keyboards, ServiceAnswers::Yes, std::nullopt);
  };
  EXPECT_EQ(of({good}), "The only keyboard can be made instant.\n");
  EXPECT_EQ(of({good, good, good}), "All 3 keyboards can be made instant.\n");
  EXPECT_EQ(of({bad}), "The only keyboard cannot be made instant: see above.\n");
  EXPECT_EQ(of({good, bad, good}), "1 of 3 keyboards cannot be made instant: see above.\n");
  EXPECT_EQ(of({hidden}), "The only keyboard can be checked by root only: run it with sudo.\n");
  EXPECT_EQ(of({bad, hidden, hidden}),
            "1 of 3 keyboards cannot be made instant: see above.\n"
            "2 of 3 keyboards can be checked by root only: run it with sudo.\n");
  EXPECT_EQ(of({}), "There are no keyboards: no device has Caps Lock and all letters.\n");
  EXPECT_EQ(verdict({good, good}, ServiceAnswers::No, std::nullopt),
            "All 2 keyboards can be made instant once the service answers: see above.\n");
  EXPECT_EQ(verdict({}, ServiceAnswers::Yes, "this is a container (docker)"),
            "There are no keyboards: this is a container (docker).\n");
}

}  // namespace
}  // namespace zephlin
