#pragma once

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QObject>
#include <QTimer>
#include <QUrl>
#include <chrono>
#include <functional>
#include <memory>

#include "Platform/Linux/Updates/FeedResult.h"

namespace zephlin {

/// Fetches a small document over https, and from https alone wherever the server redirects to.
/// Destroying it ends the download without a call. Main thread.
class FeedDownload final : public QObject {
 public:
  static constexpr qint64 maximumBytes = 1'000'000;
  static constexpr std::chrono::milliseconds usualTimeLimit{15'000};

  /// Calls `done` once, from the event loop, unless it is destroyed before.
  FeedDownload(const QUrl& url, std::function<void(const FeedResult& result)> done,
               std::chrono::milliseconds timeLimit = usualTimeLimit);
  FeedDownload(const FeedDownload&) = delete;
  FeedDownload& operator=(const FeedDownload&) = delete;
  ~FeedDownload() override;

 private:
  void finish(const FeedResult& result);
  [[nodiscard]] FeedResult result();

  std::function<void(const FeedResult& result)> done_;
  QNetworkAccessManager network_;
  std::unique_ptr<QNetworkReply> reply_;
  QTimer timeLimit_;
};

}  // namespace zephlin
