#include <gtest/gtest.h>

#include <optional>

#include "Platform/Linux/Updates/FeedDownload.h"
#include "Tests/Unit/Linux/Session/FeedServer.h"

namespace zephlin {
namespace {

using namespace std::chrono_literals;

class FeedDownloadTest : public testing::Test {
 protected:
  FeedResult download(const QUrl& url, std::chrono::milliseconds timeLimit = 1min) {
    std::optional<FeedResult> result;
    const FeedDownload feed(
        url, [&result](const FeedResult& each) { result = each; }, timeLimit);
    EXPECT_FALSE(result) << "called before the event loop";
    EXPECT_TRUE(test::runUntil([&result] { return result.has_value(); }));
    return result.value_or(FeedResult());
  }

  void redirect(const QByteArray& target) {
    server_.answers["/redirect"] =
        "HTTP/1.1 302 Found\r\nConnection: close\r\nContent-Length: 0\r\nLocation: " + target +
        "\r\n\r\n";
  }

  test::FeedServer server_;
};

TEST_F(FeedDownloadTest, TheContentArrives) {
  server_.answers["/feed"] = test::httpAnswer("content");
  const auto result = download(server_.url("/feed"));
  EXPECT_EQ(result.content, "content");
  EXPECT_EQ(result.error, "");
}

TEST_F(FeedDownloadTest, OnlyHttpsIsAsked) {
  QUrl url = server_.url("/feed");
  for (const char* const scheme : {"http", "file", "ftp"}) {
    url.setScheme(scheme);
    EXPECT_EQ(download(url).error, "The address is not a secure one (https).") << scheme;
  }
  EXPECT_EQ(download(QUrl("https:")).error, "The address is not a secure one (https).");
  EXPECT_EQ(server_.requests, 0);
}

TEST_F(FeedDownloadTest, ARedirectToAnotherSecureAddressIsFollowed) {
  server_.answers["/feed"] = test::httpAnswer("content");
  redirect(server_.url("/feed").toEncoded());
  EXPECT_EQ(download(server_.url("/redirect")).content, "content");
}

TEST_F(FeedDownloadTest, ARedirectToAnInsecureAddressIsAnError) {
  QUrl insecure = server_.url("/feed");
  insecure.setScheme("http");
  redirect(insecure.toEncoded());
  EXPECT_NE(download(server_.url("/redirect")).error, "");
  EXPECT_EQ(server_.requests, 1);
}

TEST_F(FeedDownloadTest, RedirectsWithoutEndAreAnError) {
  redirect("/redirect");
  EXPECT_NE(download(server_.url("/redirect")).error, "");
  EXPECT_LT(server_.requests, 20);
}

TEST_F(FeedDownloadTest, AServerThatNobodyVouchesForIsNotBelieved) {
  server_.answers["/feed"] = test::httpAnswer("content");
  server_.becomeUntrusted();
  const auto result = download(server_.url("/feed"));
  EXPECT_EQ(result.content, "");
  EXPECT_NE(result.error, "");
}

TEST_F(FeedDownloadTest, AnAnswerThatIsAFailureIsAnError) {
  server_.answers["/feed"] =
      "HTTP/1.1 404 Not Found\r\nConnection: close\r\nContent-Length: 4\r\n\r\nnone";
  const auto result = download(server_.url("/feed"));
  EXPECT_EQ(result.content, "");
  EXPECT_TRUE(result.error.endsWith("Not Found")) << result.error.toStdString();
}

TEST_F(FeedDownloadTest, AMegabyteIsTheMost) {
  server_.answers["/most"] = test::httpAnswer(QByteArray(FeedDownload::maximumBytes, 'x'));
  server_.answers["/more"] = test::httpAnswer(QByteArray(FeedDownload::maximumBytes + 1, 'x'));
  EXPECT_EQ(download(server_.url("/most")).content.size(), FeedDownload::maximumBytes);
  EXPECT_EQ(download(server_.url("/more")).error, "The answer is too long.");
}

TEST_F(FeedDownloadTest, AnAnswerWithoutEndIsNotReadToItsEnd) {
  server_.answers["/endless"] =
      "HTTP/1.1 200 OK\r\nContent-Length: 1000000000\r\n\r\n" + QByteArray(2'000'000, 'x');
  EXPECT_EQ(download(server_.url("/endless")).error, "The answer is too long.");
}

TEST_F(FeedDownloadTest, AnAnswerThatBreaksOffIsAnError) {
  server_.answers["/short"] = "HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\nshort";
  const auto result = download(server_.url("/short"), 200ms);
  EXPECT_EQ(result.content, "");
  EXPECT_NE(result.error, "");
}

TEST_F(FeedDownloadTest, AServerThatDoesNotAnswerIsGivenUp) {
  EXPECT_EQ(download(server_.url("/never"), 200ms).error, "The server did not answer in time.");
}

TEST_F(FeedDownloadTest, DestroyingItEndsTheDownloadWithoutACall) {
  bool called = false;
  auto feed = std::make_unique<FeedDownload>(server_.url("/never"),
                                             [&called](const FeedResult&) { called = true; });
  EXPECT_TRUE(test::runUntil([this] { return server_.requests == 1; }));
  feed.reset();
  EXPECT_TRUE(test::runUntil([this] { return server_.connections == 0; }));
  EXPECT_FALSE(called);
}

}  // namespace
}  // namespace zephlin
