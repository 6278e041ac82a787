#include "Platform/Linux/Updates/UpdatesModule.h"

#include <utility>

#include "Platform/Linux/Updates/FeedDownload.h"

QObject* zephlinStartFeedDownload(const QUrl& url,
                                  std::function<void(const zephlin::FeedResult& result)> done) {
  return new zephlin::FeedDownload(url, std::move(done));
}
