#pragma once

#include <QByteArray>
#include <QString>

namespace zephlin {

/// What a download has brought.
struct FeedResult {
  QByteArray content;
  /// Why there is no content; empty where there is.
  QString error;
};

}  // namespace zephlin
