#pragma once

#include <QObject>
#include <QUrl>
#include <functional>

#include "Platform/Linux/Updates/FeedResult.h"

/// The one symbol of the module that talks to the network: a new zephlin::FeedDownload, by a name
/// that does not depend on a C++ library. The caller owns it.
extern "C" QObject* zephlinStartFeedDownload(
    const QUrl& url, std::function<void(const zephlin::FeedResult& result)> done);
