#include <gtest/gtest.h>

#include "KeyboardService/Service/RequestHandler.h"
#include "Tests/Unit/KeyboardService/Support/FakeKeyboardBus.h"

namespace zephlin {
namespace {

constexpr uid_t root = 0;
constexpr uid_t stranger = 1001;

/// Two virtual keyboards and one that is not.
class RequestHandlerTest : public testing::Test {
 protected:
  RequestHandlerTest()
      : registry([](const std::string&) {}),
        virtualKeyboards(2),
        permissions(root, [](uid_t) { return false; }),
        handler(registry, virtualKeyboards, permissions,
                [this](const std::string& line) { log.push_back(line); }) {
    virtualKeyboards.start(registry);
    realKeyboards.start(registry);
    realKeyboards.plug(BusHandle{1}, "Real");
  }

  std::string respond(std::string_view line, uid_t user) {
    std::string answer;
    handler.respond(line, user, [&](const Response& response) { answer += encode(response); });
    return answer;
  }

  std::vector<std::string> log;
  KeyboardRegistry registry;
  VirtualKeyboardBus virtualKeyboards;
  FakeKeyboardBus realKeyboards;
  Permissions permissions;
  RequestHandler handler;
};

std::string error(const std::string& text) {
  return encode(ErrorResponse{text});
}

TEST_F(RequestHandlerTest, ListsForEveryone) {
  EXPECT_EQ(
      respond(R"({"request":"list","matching":{"Product":"Real"}})", stranger),
      R"({"keyboards":[{"primaryUsage":6,"primaryUsagePage":1,"product":"Real","productID":0,)"
      R"("registryID":"100000003","seat":"","state":"","transport":"USB","vendorID":0}],)"
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

TEST_F(RequestHandlerTest, ReportsTheRefusalOfABus) {
  realKeyboards.refusing.insert(BusHandle{1});
  EXPECT_EQ(respond(R"({"request":"set","matching":{},"properties":{"A":5}})", root),
            error("keyboard 100000003 refused: the cable is loose; nothing is changed"));
  EXPECT_EQ(registry.get({}, "A").front().value, std::nullopt);
  EXPECT_TRUE(log.empty());
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
