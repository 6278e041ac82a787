#pragma once

#include <QObject>
#include <QString>
#include <QUrl>
#include <functional>
#include <memory>

#include "Platform/Linux/Updates/FeedResult.h"

namespace zephlin {

/// Starts a FeedDownload of the module at this path. The module is loaded with the first one and
/// stays. `done` is called once, from the event loop, unless the download is destroyed before;
/// where the module cannot be loaded, with an error. Main thread.
std::unique_ptr<QObject> startFeedDownload(const QString& modulePath, const QUrl& url,
                                           std::function<void(const FeedResult& result)> done);

}  // namespace zephlin
