#include "Platform/Linux/Session/LoadedFeedDownload.h"

#include <QLibrary>
#include <QTimer>
#include <chrono>
#include <utility>

#include "Platform/Linux/Updates/UpdatesModule.h"

namespace zephlin {

std::unique_ptr<QObject> startFeedDownload(const QString& modulePath, const QUrl& url,
                                           std::function<void(const FeedResult& result)> done) {
  QLibrary module(modulePath);
  const auto start = reinterpret_cast<decltype(&zephlinStartFeedDownload)>(
      module.resolve("zephlinStartFeedDownload"));
  if (start != nullptr) {
    return std::unique_ptr<QObject>(start(url, std::move(done)));
  }
  auto failure = std::make_unique<QTimer>();
  failure->setSingleShot(true);
  QObject::connect(
      failure.get(), &QTimer::timeout, failure.get(),
      [done = std::move(done), reason = module.errorString()] {
        // The callback may destroy the timer, and this function object with it.
        const auto call = done;
        call(
            {{}, "A part of Zephlin is missing; reinstall the package zephlin-desktop. " + reason});
      });
  failure->start(std::chrono::milliseconds(0));
  return failure;
}

}  // namespace zephlin
