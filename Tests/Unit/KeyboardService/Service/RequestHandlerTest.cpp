#include <gtest/gtest.h>

#include <chrono>

#include "KeyboardService/Service/RequestHandler.h"
#include "Tests/Unit/KeyboardService/Support/FakeKeyboardBus.h"

namespace zephlin {
namespace {

constexpr uid_t root = 0;
constexpr uid_t atFirstSeat = 1000;
constexpr uid_t stranger = 1001;
constexpr std::chrono::milliseconds waitLimit{50};

const std::string listOfReal = R"({"request":"list","matching":{"Product":"Real"}})";
const std::string setInstant =
    R"({"request":"set","matching":{},"properties":{"CapsLockDelayOverride":0}})";
const std::string getDelay =
    R"({"request":"get","matching":{"Product":"Real"},"key":"CapsLockDelayOverride"})";

/// Two virtual keyboards and one that is not.
class RequestHandlerTest : public testing::Test {
 protected:
  RequestHandlerTest()
      : limitedLog(loop, [this](const std::string& line) { log.push_back(line); }),
        registry(limitedLog),
        virtualKeyboards(2),
        handler(loop, registry, virtualKeyboards,
                Permissions(
                    root,
                    [](uid_t user) { return user == atFirstSeat ? Logins{{"seat0"}} : Logins{}; }),
                limitedLog, waitLimit) {
    virtualKeyboards.start(registry);
    realKeyboards.start(registry);
    realKeyboards.plug(real, "Real", "seat1");
    log.clear();
  }

  std::string respond(std::string_view line, uid_t user) {
    std::string answer;
    handler.respond(line, user, [&](const Response& response) { answer += encode(response); });
    return answer;
  }

  /// Has a request answered later, into `answers`.
  void ask(const std::string& line) {
    handler.respond(line, root,
                    [this](const Response& response) { answers.push_back(encode(response)); });
  }

  /// Turns the loop until there are so many answers.
  void awaitAnswers(std::size_t count) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (answers.size() < count && std::chrono::steady_clock::now() < deadline) {
      sd_event_run(loop.native(), 10'000);
    }
    EXPECT_EQ(answers.size(), count);
  }

  static constexpr BusHandle real{1};

  EventLoop loop;
  std::vector<std::string> log;
  LimitedLog limitedLog;
  KeyboardRegistry registry;
  VirtualKeyboardBus virtualKeyboards;
  FakeKeyboardBus realKeyboards;
  RequestHandler handler;
  std::vector<std::string> answers;
};

std::string error(const std::string& text) {
  return encode(ErrorResponse{text});
}

TEST_F(RequestHandlerTest, ListsForEveryone) {
  EXPECT_EQ(
      respond(listOfReal, stranger),
      R"({"keyboards":[{"primaryUsage":6,"primaryUsagePage":1,"product":"Real","productID":0,)"
      R"("registryID":"100000003","seat":"seat1","state":"default","transport":"USB","vendorID":0}],)"
      R"("response":"list"})");
}

TEST_F(RequestHandlerTest, SetsForWhoMayAndTellsEveryone) {
  EXPECT_EQ(
      respond(R"({"request":"set","matching":{"ProductID":2},"properties":{"A":5,"B":6}})", root),
      R"({"keyboards":["100000002"],"response":"set","unset":[]})");
  EXPECT_EQ(respond(R"({"request":"get","matching":{},"key":"A"})", stranger),
            R"({"response":"get","values":[{"registryID":"100000001","value":null},)"
            R"({"registryID":"100000002","value":5},{"registryID":"100000003","value":null}]})");
  EXPECT_EQ(log, std::vector<std::string>{"A=5, B=6 set on 1 keyboard by user 0"});
}

TEST_F(RequestHandlerTest, RefusesStrangersWhateverWouldChangeKeyboards) {
  for (const char* const request :
       {R"({"request":"set","matching":{},"properties":{"A":5}})", R"({"request":"plug"})",
        R"({"request":"pull","registryID":"100000001"})"}) {
    EXPECT_EQ(respond(request, stranger),
              error("permission denied for user 1001; only root and users with an active local "
                    "login session may change keyboards; log in at the machine itself, or run this "
                    "as root"))
        << request;
  }
  EXPECT_EQ(registry.size(), 3U);
  EXPECT_EQ(registry.get({}, "A").front().value, std::nullopt);
}

TEST_F(RequestHandlerTest, PlugsAndPulls) {
  EXPECT_EQ(respond(R"({"request":"plug"})", root),
            R"({"registryID":"100000004","response":"plug"})");
  EXPECT_EQ(respond(R"({"request":"pull","registryID":"100000004"})", root),
            R"({"response":"pull"})");
  EXPECT_EQ(respond(R"({"request":"pull","registryID":"100000004"})", root),
            error("no keyboard 100000004; see hidutil list"));
}

TEST_F(RequestHandlerTest, PullsOnlyVirtualKeyboards) {
  EXPECT_EQ(respond(R"({"request":"pull","registryID":"100000003"})", root),
            error("keyboard 100000003 was not plugged in by hidutil; unplug it by hand"));
  EXPECT_EQ(registry.size(), 3U);
}

TEST_F(RequestHandlerTest, RefusesToPlugMoreThanThereCanBe) {
  for (int plugged = 2; plugged < 256; ++plugged) {
    respond(R"({"request":"plug"})", root);
  }
  EXPECT_EQ(respond(R"({"request":"plug"})", root),
            error("virtual keyboard limit reached (256); pull one first"));
}

TEST_F(RequestHandlerTest, AValueThatAKeyboardCannotCarryRefusesTheRequest) {
  realKeyboards.refuses = true;
  EXPECT_EQ(respond(R"({"request":"set","matching":{},"properties":{"A":5}})", root),
            error("keyboard 100000003 refused: the cable is loose; nothing is changed"));
  EXPECT_EQ(registry.get({}, "A").front().value, std::nullopt);
  EXPECT_TRUE(log.empty());
}

TEST_F(RequestHandlerTest, LeavesTheKeyboardsOfOtherSeatsAlone) {
  EXPECT_EQ(respond(setInstant, atFirstSeat),
            encode(SetResponse{{RegistryID{0x100000001}, RegistryID{0x100000002}},
                               {{RegistryID{0x100000003}, "not on your seat"}}}));
  EXPECT_TRUE(realKeyboards.applied.empty());
  EXPECT_EQ(log,
            std::vector<std::string>{"CapsLockDelayOverride=0 set on 2 keyboards by user 1000"});
}

TEST_F(RequestHandlerTest, SettingWhatIsSetLogsNothing) {
  respond(setInstant, root);
  log.clear();
  respond(setInstant, root);
  EXPECT_TRUE(log.empty());
}

TEST_F(RequestHandlerTest, WhatAUserHasLoggedIsLimited) {
  for (unsigned time = 0; time < 100; ++time) {
    respond(R"({"request":"plug"})", root);
    respond(
        R"({"request":"pull","registryID":")" + toText(RegistryID{0x100000004U + time}) + R"("})",
        root);
  }
  EXPECT_EQ(log.size(), 20U);
}

TEST_F(RequestHandlerTest, ASetIsAnsweredWhenTheKeyboardsHaveSettled) {
  realKeyboards.becomes = KeyboardState{settling, "a key is held down"};
  ask(setInstant);
  ask(getDelay);
  ask(R"({"request":"get","matching":{"ProductID":1},"key":"CapsLockDelayOverride"})");
  const std::string valueOfAnother = encode(GetResponse{{{RegistryID{0x100000001}, 0}}});
  EXPECT_EQ(answers, std::vector{valueOfAnother});
  realKeyboards.report(real, {inForce, "grabbed"});
  awaitAnswers(3);
  EXPECT_EQ(answers.at(1),
            encode(SetResponse{
                {RegistryID{0x100000001}, RegistryID{0x100000002}, RegistryID{0x100000003}}, {}}));
  EXPECT_EQ(answers.at(2), encode(GetResponse{{{RegistryID{0x100000003}, 0}}}));
}

TEST_F(RequestHandlerTest, AKeyboardThatDoesNotSettleInTimeIsNamedWithWhatIsInTheWay) {
  realKeyboards.becomes = KeyboardState{settling, "a key is held down"};
  const auto start = std::chrono::steady_clock::now();
  ask(setInstant);
  awaitAnswers(1);
  EXPECT_GE(std::chrono::steady_clock::now() - start, waitLimit);
  EXPECT_EQ(answers.front(),
            encode(SetResponse{{RegistryID{0x100000001}, RegistryID{0x100000002}},
                               {{RegistryID{0x100000003}, "a key is held down"}}}));
}

TEST_F(RequestHandlerTest, AKeyboardThatDoesNotAnswerInTimeIsNotInForce) {
  realKeyboards.answers = false;
  ask(setInstant);
  ask(getDelay);
  awaitAnswers(2);
  EXPECT_EQ(answers.front(), encode(SetResponse{{RegistryID{0x100000001}, RegistryID{0x100000002}},
                                                {{RegistryID{0x100000003}, "does not answer"}}}));
  EXPECT_EQ(answers.back(), encode(GetResponse{{{RegistryID{0x100000003}, std::nullopt}}}));
}

TEST_F(RequestHandlerTest, RequestsThatWaitShareOneQuestion) {
  realKeyboards.answers = false;
  ask(setInstant);
  ask(getDelay);
  ask(listOfReal);
  EXPECT_TRUE(answers.empty());
  EXPECT_EQ(realKeyboards.checked.size(), 1U);
  realKeyboards.answer(real);
  awaitAnswers(3);
}

TEST_F(RequestHandlerTest, LetsEveryoneSubscribe) {
  EXPECT_EQ(respond(R"({"request":"subscribe"})", stranger), R"({"subscribed":true})");
}

TEST_F(RequestHandlerTest, AnswersNonsenseWithAnError) {
  EXPECT_EQ(respond("nonsense", stranger),
            error("the request is not valid JSON (at character 2); expected an object such as "
                  R"({"request":"list","matching":{}})"));
}

}  // namespace
}  // namespace zephlin
