#include <gtest/gtest.h>

#include "Platform/Linux/Session/Appcast.h"

namespace zephlin {
namespace {

QByteArray feed(const QByteArray& channel) {
  return R"(<?xml version="1.0" encoding="utf-8"?>
<rss version="2.0" xmlns:sparkle="http://www.andymatuschak.org/xml-namespaces/sparkle"
     xmlns:atom="http://www.w3.org/2005/Atom"><channel>)" +
         channel + "</channel></rss>";
}

QByteArray item(const QByteArray& version) {
  return "<item><title>t</title><sparkle:version>" + version +
         "</sparkle:version><link>https://example.com/" + version + "</link></item>";
}

std::string newest(const QByteArray& channel) {
  const Appcast appcast = parseAppcast(feed(channel));
  EXPECT_EQ(appcast.error, "");
  const AppcastItem& item = appcast.newest;
  return item.version.isNull()
             ? "none"
             : (item.version.toString() + " " + item.page.toString()).toStdString();
}

TEST(AppcastTest, TheNewestVersionIsFoundWhereverItStands) {
  EXPECT_EQ(newest(item("0.9") + item("0.10") + item("0.2.99")), "0.10 https://example.com/0.10");
  EXPECT_EQ(newest(item("2") + item("1.9.9")), "2 https://example.com/2");
}

TEST(AppcastTest, AFeedMayOfferNothing) {
  EXPECT_EQ(newest(""), "none");
  EXPECT_EQ(newest(item("") + item("latest") + item("1.0-beta") + item("1.") +
                   "<item><link>https://example.com</link></item>"),
            "none");
}

TEST(AppcastTest, TheVersionMayStandOnTheEnclosure) {
  EXPECT_EQ(newest(R"(<item><enclosure url="https://example.com/x.zip" sparkle:version="1.5"/>
                      <link> https://example.com/page </link></item>)"),
            "1.5 https://example.com/page");
}

TEST(AppcastTest, TheVersionThatPeopleSeeCounts) {
  EXPECT_EQ(newest(R"(<item><enclosure sparkle:version="4711"
                      sparkle:shortVersionString="1.5"/></item>)"),
            "1.5 ");
  EXPECT_EQ(newest("<item><sparkle:shortVersionString>1.5</sparkle:shortVersionString>"
                   "<sparkle:version>4711</sparkle:version></item>"),
            "1.5 ");
}

TEST(AppcastTest, TheFeedsPageServesWhereTheItemHasNoSecureOne) {
  EXPECT_EQ(newest("<link>https://example.com/all</link><item><sparkle:version>1</sparkle:version>"
                   "<link>http://example.com/insecure</link></item>"),
            "1 https://example.com/all");
  EXPECT_EQ(newest("<link>javascript:alert(1)</link><item><sparkle:version>1</sparkle:version>"
                   "<atom:link>https://example.com/other</atom:link></item>"),
            "1 ");
}

TEST(AppcastTest, WhatIsNoFeedIsAnError) {
  for (const char* const text :
       {"", "no XML", "<html><channel/></html>", "<rss><channel>", "<rss>&undefined;</rss>"}) {
    const Appcast appcast = parseAppcast(text);
    EXPECT_NE(appcast.error, "") << text;
    EXPECT_TRUE(appcast.newest.version.isNull()) << text;
  }
}

TEST(AppcastTest, AFeedThatBreaksOffOffersNothing) {
  const QByteArray whole = feed(item("1.0"));
  EXPECT_NE(parseAppcast(whole.first(whole.size() - 10)).error, "");
  EXPECT_TRUE(parseAppcast(whole.first(whole.size() - 10)).newest.version.isNull());
}

TEST(AppcastTest, ADocumentTypeIsRefused) {
  QByteArray bomb = "<!DOCTYPE rss [<!ENTITY a \"aaaaaaaaaa\">";
  for (char name = 'b'; name < 'p'; ++name) {
    const QByteArray former = QByteArray("&") + static_cast<char>(name - 1) + ";";
    bomb += QByteArray("<!ENTITY ") + name + " \"" + former.repeated(10) + "\">";
  }
  bomb += "]><rss><channel><link>&o;</link></channel></rss>";
  EXPECT_EQ(parseAppcast(bomb).error, "The feed has a document type.");
  EXPECT_EQ(parseAppcast("<!DOCTYPE rss SYSTEM \"file:///etc/passwd\"><rss/>").error,
            "The feed has a document type.");
}

TEST(AppcastTest, DeepNestingDoesNoHarm) {
  const QByteArray deep =
      QByteArray("<x>").repeated(100'000) + QByteArray("</x>").repeated(100'000);
  EXPECT_EQ(newest(deep + item("1") + "<item>" + deep + "</item>"), "1 https://example.com/1");
}

TEST(AppcastTest, VersionsAreComparedByTheirNumbers) {
  const auto version = [](const char* text) { return parseVersion(text); };
  EXPECT_TRUE(isNewer(version("0.10"), version("0.9")));
  EXPECT_TRUE(isNewer(version("1.1"), version("1.0.9")));
  EXPECT_FALSE(isNewer(version("0.9"), version("0.10")));
  EXPECT_FALSE(isNewer(version(" 1.0.0 "), version("1")));
  EXPECT_TRUE(version("1.0b2").isNull());
  EXPECT_TRUE(version("").isNull());
}

}  // namespace
}  // namespace zephlin
