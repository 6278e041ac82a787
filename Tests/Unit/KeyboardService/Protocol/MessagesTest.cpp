#include <gtest/gtest.h>

#include "KeyboardService/Protocol/Messages.h"
#include "Tests/Unit/KeyboardService/Support/ErrorText.h"

namespace zephlin {
namespace {

Matching someMatching() {
  Matching matching;
  matching.primaryUsagePage = 1;
  matching.product = "Keys \"ü\"\n";
  matching.registryID = RegistryID{0x100000001};
  return matching;
}

TEST(Protocol, EveryRequestSurvivesTheWay) {
  for (const Request& request :
       {Request(ListRequest{someMatching()}), Request(GetRequest{{}, "CapsLockDelayOverride"}),
        Request(SetRequest{someMatching(), {{"A", INT64_MIN}, {"B", INT64_MAX}}}),
        Request(PlugRequest{}), Request(PullRequest{RegistryID{0xabc}}),
        Request(SubscribeRequest{})}) {
    EXPECT_EQ(decodeRequest(encode(request)), request) << encode(request);
    EXPECT_EQ(encode(request).find('\n'), std::string::npos);
  }
}

TEST(Protocol, EveryResponseSurvivesTheWay) {
  const Keyboard keyboard{
      RegistryID{0xabc}, {1, 6, -1, INT64_MAX, "Keys \"ü\"\n", "USB", "seat0"}, "watched"};
  for (const Response& response :
       {Response(ListResponse{{keyboard, {}}}), Response(ListResponse{}),
        Response(GetResponse{{{RegistryID{1}, 0}, {RegistryID{2}, std::nullopt}}}),
        Response(SetResponse{{RegistryID{1}, RegistryID{2}}, {{RegistryID{3}, "no\nway"}}}),
        Response(PlugResponse{RegistryID{3}}), Response(PullResponse{}),
        Response(SubscribeResponse{}), Response(AppearedNotice{RegistryID{0xabc}}),
        Response(ErrorResponse{"no\nway"})}) {
    EXPECT_EQ(decodeResponse(encode(response)), response) << encode(response);
    EXPECT_EQ(encode(response).find('\n'), std::string::npos);
  }
}

TEST(Protocol, RequestsLookLikeThis) {
  EXPECT_EQ(
      encode(Request(SetRequest{someMatching(), {{"A", -1}}})),
      R"({"matching":{"PrimaryUsagePage":1,"Product":"Keys \"ü\"\n","RegistryID":"100000001"},)"
      R"("properties":{"A":-1},"request":"set"})");
  EXPECT_EQ(encode(Request(PlugRequest{})), R"({"request":"plug"})");
}

TEST(Protocol, SubscriptionsLookLikeThis) {
  EXPECT_EQ(encode(Request(SubscribeRequest{})), R"({"request":"subscribe"})");
  EXPECT_EQ(encode(Response(SubscribeResponse{})), R"({"subscribed":true})");
  EXPECT_EQ(encode(Response(AppearedNotice{RegistryID{0x100000001}})),
            R"({"appeared":"100000001"})");
}

TEST(Protocol, ADeviceNameThatIsNotUtf8IsStillSent) {
  const std::string line =
      encode(Response(ListResponse{{{RegistryID{1}, {1, 6, 0, 0, "\xff", "", ""}, ""}}}));
  EXPECT_EQ(std::get<ListResponse>(decodeResponse(line)).keyboards.front().description.product,
            "\uFFFD");
}

TEST(Protocol, AServiceOfAnOlderVersionIsUnderstood) {
  EXPECT_EQ(decodeResponse(R"({"keyboards":[{"primaryUsage":6,"primaryUsagePage":1,"product":"K",)"
                           R"("productID":0,"registryID":"1","transport":"USB","vendorID":0}],)"
                           R"("response":"list"})"),
            Response(ListResponse{{{RegistryID{1}, {1, 6, 0, 0, "K", "USB", ""}, ""}}}));
  EXPECT_EQ(decodeResponse(R"({"keyboards":["1"],"response":"set"})"),
            Response(SetResponse{{RegistryID{1}}, {}}));
}

std::string refusalOf(std::string_view line) {
  return requestErrorOf([&] { decodeRequest(line); });
}

TEST(Protocol, RequestsOfAnotherShapeAreRefused) {
  const std::vector<std::pair<const char*, const char*>> refusals{
      {"hello",
       "the request is not valid JSON (at character 1); expected an object such as "
       R"({"request":"list","matching":{}})"},
      {"{}", R"(the request lacks "request")"},
      {R"({"request":1})", R"(the request's "request" must be text)"},
      {R"({"request":"dance"})",
       R"(unknown request "dance"; known are list, get, set, plug, pull, subscribe)"},
      {R"({"request":"list"})", R"(the request lacks "matching")"},
      {R"({"request":"list","matching":[]})",
       R"(the matching must be an object such as {"PrimaryUsagePage":1,"PrimaryUsage":6})"},
      {R"({"request":"set","matching":{},"properties":3})",
       R"(the properties must be an object such as {"CapsLockDelayOverride":0})"},
      {R"({"request":"get","matching":{},"key":3})", R"(the request's "key" must be text)"},
      {R"({"request":"pull","registryID":"XYZ"})",
       R"("XYZ" is not a RegistryID; hidutil list prints them)"},
      {R"({"request":"plug","matching":{}})", "unexpected member in the request"},
      {R"({"request":"subscribe","matching":{}})", "unexpected member in the request"}};
  for (const auto& [line, refusal] : refusals) {
    EXPECT_EQ(refusalOf(line), refusal);
  }
}

TEST(Protocol, RequestsAreHeldToTheRulesForArgumentsAndToUtf8) {
  const std::vector<std::pair<const char*, const char*>> refusals{
      {"[]", "the request is not an object"},
      {R"({"request":"list","matching":{"Colour":1}})", R"(unknown matching key "Colour")"},
      {R"({"request":"get","matching":{},"key":"a b"})", R"(property key "a b" is not valid)"},
      {R"({"request":"set","matching":{},"properties":{"A":1.5}})",
       R"(the value of "A" must be a whole number)"},
      {"{\"request\":\"\xff\"}", "the request is not valid JSON"}};
  for (const auto& [line, refusal] : refusals) {
    EXPECT_TRUE(refusalOf(line).starts_with(refusal)) << line;
  }
}

TEST(Protocol, BottomlessNestingIsRefusedWithoutHarm) {
  EXPECT_EQ(refusalOf(std::string(60'000, '[')).find("the request is not valid JSON"), 0U);
  EXPECT_EQ(refusalOf("{\"request\":" + std::string(30'000, '[') + std::string(30'000, ']') + "}"),
            R"(the request's "request" must be text)");
}

TEST(Protocol, LinesThatAreNoResponseAreRefused) {
  for (const char* const line : {"",
                                 "garbage",
                                 "[]",
                                 "{}",
                                 R"({"response":3})",
                                 R"({"response":"dance"})",
                                 R"({"response":"list"})",
                                 R"({"response":"list","keyboards":{}})",
                                 R"({"response":"list","keyboards":[1]})",
                                 R"({"response":"list","keyboards":[{}]})",
                                 R"({"response":"get","values":[{"registryID":"1","value":1.5}]})",
                                 R"({"response":"get","values":[{"registryID":"XYZ","value":1}]})",
                                 R"({"response":"set","keyboards":[1]})",
                                 R"({"response":"set","keyboards":[],"unset":{}})",
                                 R"({"response":"set","keyboards":[],"unset":[1]})",
                                 R"({"response":"set","keyboards":[],"unset":[{"reason":""}]})",
                                 R"({"response":"plug"})",
                                 R"({"subscribed":false})",
                                 R"({"subscribed":1})",
                                 R"({"appeared":1})",
                                 R"({"appeared":"0x1"})",
                                 R"({"response":"error"})",
                                 R"({"response":"error","text":5})"}) {
    EXPECT_THROW(decodeResponse(line), ResponseError) << line;
  }
}

}  // namespace
}  // namespace zephlin
