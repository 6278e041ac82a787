#include <gtest/gtest.h>

#include "KeyboardService/Client/CommandLine.h"
#include "KeyboardService/Client/Listing.h"
#include "Tests/Unit/KeyboardService/Support/ErrorText.h"

namespace zephlin {
namespace {

TEST(Listing, PropertiesAreAlignedUnderTheirHeader) {
  const GetResponse response{{{RegistryID{0x10000046a}, 0},
                              {RegistryID{0x1000004c1}, std::nullopt},
                              {RegistryID{0x1000004d7}, -1}}};
  EXPECT_EQ(listing(GetRequest{{}, "CapsLockDelayOverride"}, response),
            "RegistryID   Key                     Value\n"
            "10000046a    CapsLockDelayOverride   0\n"
            "1000004c1    CapsLockDelayOverride   (null)\n"
            "1000004d7    CapsLockDelayOverride   -1\n");
}

TEST(Listing, TheHeaderIsThereWithoutRows) {
  EXPECT_EQ(listing(GetRequest{{}, "A"}, GetResponse{}), "RegistryID   Key   Value\n");
  EXPECT_EQ(listing(SetRequest{}, SetResponse{}), "RegistryID   Key   Value\n");
  EXPECT_EQ(listing(ListRequest{}, ListResponse{}),
            "RegistryID   VendorID   ProductID   UsagePage   Usage   Transport   State   "
            "Product\n");
}

TEST(Listing, WhatWasSetIsListedForEveryKeyboardAndKey) {
  EXPECT_EQ(listing(SetRequest{{}, {{"Beta", 2}, {"A", 1}}},
                    SetResponse{{RegistryID{0x100000001}, RegistryID{0x100000002}}, {}}),
            "RegistryID   Key    Value\n"
            "100000001    A      1\n"
            "100000001    Beta   2\n"
            "100000002    A      1\n"
            "100000002    Beta   2\n");
}

TEST(Listing, KeyboardsAreAligned) {
  const ListResponse response{
      {{RegistryID{0x100000001}, {1, 6, 1133, 49948, "Tasty Keys", "USB", "seat0"}, "watched"},
       {RegistryID{0x100000002}, {1, 6, 0, 1, "Virtual Keyboard 1", "Virtual", ""}, ""}}};
  EXPECT_EQ(listing(ListRequest{}, response),
            "RegistryID   VendorID   ProductID   UsagePage   Usage   Transport   State     "
            "Product\n"
            "100000001    1133       49948       1           6       USB         watched   "
            "Tasty Keys\n"
            "100000002    0          1           1           6       Virtual     -         "
            "Virtual Keyboard 1\n");
}

TEST(Listing, NoTextOfADeviceOrAProgramCanBreakTheTableOrTheTerminal) {
  const ListResponse response{
      {{RegistryID{1}, {1, 6, 0, 0, "a\n\x1b[2J", "U\tB", ""}, "held by \r (pid 7)"}}};
  const std::string text = listing(ListRequest{}, response);
  EXPECT_NE(text.find(R"(U\x09B)"), std::string::npos);
  EXPECT_NE(text.find(R"(a\x0a\x1b[2J)"), std::string::npos);
  EXPECT_NE(text.find(R"(held by \x0d (pid 7))"), std::string::npos);
}

TEST(Listing, WhatIsNotSetIsNamedInALineEach) {
  const SetResponse response{{RegistryID{1}},
                             {{RegistryID{0x100000002}, "held by another program: keyd (pid 412)"},
                              {RegistryID{0x100000003}, "held by\n"}}};
  EXPECT_EQ(complaints(response),
            (std::vector<std::string>{
                "keyboard 100000002 is not set: held by another program: keyd (pid 412)",
                R"(keyboard 100000003 is not set: held by\x0a)"}));
  EXPECT_FALSE(hasFailed(response));
}

TEST(Listing, ASetThatFailsOnEveryKeyboardPrintsNoTable) {
  const SetResponse response{{}, {{RegistryID{1}, "a key is held down"}}};
  EXPECT_TRUE(hasFailed(response));
  EXPECT_EQ(listing(SetRequest{{}, {{"A", 1}}}, response), "");
  EXPECT_FALSE(hasFailed(SetResponse{}));
}

TEST(Listing, APluggedKeyboardIsPrintedAloneAndAPulledOneNotAtAll) {
  EXPECT_EQ(listing(PlugRequest{}, PlugResponse{RegistryID{0x100000001}}), "100000001\n");
  EXPECT_EQ(listing(PullRequest{}, PullResponse{}), "");
}

TEST(Listing, AnErrorOfTheServiceBecomesOneLine) {
  EXPECT_EQ(requestErrorOf([] { listing(PlugRequest{}, ErrorResponse{"no\nway"}); }),
            R"(no\x0away)");
  EXPECT_LT(requestErrorOf([] {
              listing(PlugRequest{}, ErrorResponse{std::string(100'000, 'x')});
            }).size(),
            2000U);
}

TEST(Listing, AResponseToSomethingElseIsRefused) {
  EXPECT_THROW(listing(PlugRequest{}, PullResponse{}), ResponseError);
  EXPECT_THROW(listing(GetRequest{{}, "A"}, SetResponse{}), ResponseError);
}

}  // namespace
}  // namespace zephlin
