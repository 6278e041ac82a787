#include <gtest/gtest.h>

#include <optional>

#include "Platform/Linux/Session/LoadedFeedDownload.h"
#include "Tests/Support/TestProcess.h"
#include "Tests/Unit/Linux/Session/FeedServer.h"

namespace zephlin {
namespace {

TEST(LoadedFeedDownloadTest, TheNetworkIsLoadedWhenTheUserChecksForUpdatesAndNotBefore) {
  const test::Outcome outcome = test::run({SESSION_PROGRAM, "updates", UPDATES_MODULE});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, "no network\nnetwork\n");
}

TEST(LoadedFeedDownloadTest, TheContentArrives) {
  test::FeedServer server;
  server.answers["/feed"] = test::httpAnswer("content");
  std::optional<FeedResult> result;
  const auto download = startFeedDownload(UPDATES_MODULE, server.url("/feed"),
                                          [&result](const FeedResult& each) { result = each; });
  EXPECT_TRUE(test::runUntil([&result] { return result.has_value(); }));
  EXPECT_EQ(result.value_or(FeedResult()).content, "content");
}

TEST(LoadedFeedDownloadTest, WithoutTheModuleThereIsAnErrorFromTheEventLoop) {
  std::optional<FeedResult> result;
  std::unique_ptr<QObject> download =
      startFeedDownload("/nonexistent/updates.so", QUrl("https://localhost/"),
                        [&result, &download](const FeedResult& each) {
                          result = each;
                          download.reset();
                        });
  EXPECT_FALSE(result) << "called before the event loop";
  EXPECT_TRUE(test::runUntil([&result] { return result.has_value(); }));
  EXPECT_NE(result.value_or(FeedResult()).error, "");
  EXPECT_FALSE(download);
}

TEST(LoadedFeedDownloadTest, AFailureThatNobodyWaitsForIsNotTold) {
  bool called = false;
  startFeedDownload("/nonexistent/updates.so", QUrl("https://localhost/"),
                    [&called](const FeedResult&) { called = true; })
      .reset();
  int rounds = 0;
  EXPECT_TRUE(test::runUntil([&rounds] { return ++rounds > 5; }));
  EXPECT_FALSE(called);
}

}  // namespace
}  // namespace zephlin
