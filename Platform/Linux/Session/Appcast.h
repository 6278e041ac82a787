#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>
#include <QVersionNumber>

namespace zephlin {

/// A version that a feed of updates offers.
struct AppcastItem {
  /// Null where there is none.
  QVersionNumber version;
  /// Where a person reads about it and gets it: https, or empty.
  QUrl page;
};

/// What a feed holds: the newest version in it, if it has any, or why it cannot be read.
struct Appcast {
  AppcastItem newest;
  QString error;
};

/// Reads an RSS 2.0 feed with Sparkle's extensions (sparkle-project.org, "Publishing an update").
/// An item's version is its `sparkle:shortVersionString`, or else its `sparkle:version`, each an
/// element of its own or an attribute of `enclosure`. Versions that are not numbers with dots
/// between them are left out. A feed with a document type is refused: it needs none, and it could
/// define entities that grow without bound.
Appcast parseAppcast(const QByteArray& feed);

/// The version, or null where the text is not just numbers with dots between them.
QVersionNumber parseVersion(const QString& text);

/// Whether `candidate` is newer; 1.0 is as old as 1.0.0, and null is older than all.
bool isNewer(const QVersionNumber& candidate, const QVersionNumber& version);

}  // namespace zephlin
