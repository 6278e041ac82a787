#include "Platform/Linux/Updates/FeedDownload.h"

#include <QNetworkRequest>
#include <utility>

namespace zephlin {

namespace {

constexpr int mostRedirects = 5;

QNetworkRequest requestOf(const QUrl& url) {
  QNetworkRequest request(url);
  request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                       QNetworkRequest::NoLessSafeRedirectPolicy);
  request.setMaximumRedirectsAllowed(mostRedirects);
  request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
  request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
  request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
  request.setHeader(QNetworkRequest::UserAgentHeader, "Zephlin/" ZEPHLIN_VERSION);
  return request;
}

}  // namespace

FeedDownload::FeedDownload(const QUrl& url, std::function<void(const FeedResult& result)> done,
                           std::chrono::milliseconds timeLimit)
    : done_(std::move(done)) {
  timeLimit_.setSingleShot(true);
  if (url.scheme() != "https" || url.host().isEmpty()) {
    QObject::connect(&timeLimit_, &QTimer::timeout, &timeLimit_, [this] {
      finish({{}, "The address is not a secure one (https)."});
    });
    timeLimit_.start(0);
    return;
  }
  reply_.reset(network_.get(requestOf(url)));
  QObject::connect(reply_.get(), &QNetworkReply::readyRead, &timeLimit_, [this] {
    if (reply_->bytesAvailable() > maximumBytes) {
      finish({{}, "The answer is too long."});
    }
  });
  QObject::connect(reply_.get(), &QNetworkReply::finished, &timeLimit_,
                   [this] { finish(result()); });
  QObject::connect(&timeLimit_, &QTimer::timeout, &timeLimit_, [this] {
    finish({{}, "The server did not answer in time."});
  });
  timeLimit_.start(timeLimit);
}

FeedDownload::~FeedDownload() = default;

void FeedDownload::finish(const FeedResult& result) {
  timeLimit_.stop();
  if (reply_) {
    reply_->disconnect(&timeLimit_);
    // Within the reply's own signal it may not be deleted.
    reply_.release()->deleteLater();
  }
  // The callback may destroy this object.
  const auto done = std::exchange(done_, nullptr);
  done(result);
}

FeedResult FeedDownload::result() {
  if (reply_->error() != QNetworkReply::NoError) {
    return {{}, reply_->errorString()};
  }
  QByteArray content = reply_->read(maximumBytes + 1);
  if (content.size() > maximumBytes) {
    return {{}, "The answer is too long."};
  }
  return {std::move(content), {}};
}

}  // namespace zephlin
