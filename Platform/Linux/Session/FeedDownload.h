#pragma once

#include <QByteArray>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QString>
#include <QTimer>
#include <QUrl>
#include <chrono>
#include <functional>
#include <memory>

namespace zephlin {

/// Fetches a small document over https, and from https alone wherever the server redirects to.
/// Destroying it ends the download without a call. Main thread.
class FeedDownload {
 public:
  static constexpr qint64 mostBytes = 1'000'000;
  static constexpr std::chrono::milliseconds usualTimeLimit{15'000};

  struct Result {
    QByteArray content;
    /// Why there is no content; empty where there is.
    QString error;
  };

  /// Calls `done` once, from the event loop, unless it is destroyed before.
  FeedDownload(const QUrl& url, std::function<void(const Result& result)> done,
               std::chrono::milliseconds timeLimit = usualTimeLimit);
  FeedDownload(const FeedDownload&) = delete;
  FeedDownload& operator=(const FeedDownload&) = delete;
  ~FeedDownload();

 private:
  void finish(const Result& result);
  [[nodiscard]] Result result();

  std::function<void(const Result& result)> done_;
  QNetworkAccessManager network_;
  std::unique_ptr<QNetworkReply> reply_;
  QTimer timeLimit_;
};

}  // namespace zephlin
