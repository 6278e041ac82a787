#include "Platform/Linux/Session/Appcast.h"

#include <QXmlStreamReader>
#include <utility>

namespace zephlin {

namespace {

constexpr const char* sparkle = "http://www.andymatuschak.org/xml-namespaces/sparkle";

/// An item as it stands in the feed.
struct RawItem {
  QString version;
  QString shortVersion;
  QUrl page;
};

QUrl httpsUrl(const QString& text) {
  const QUrl url(text.trimmed(), QUrl::StrictMode);
  return url.scheme() == "https" && !url.host().isEmpty() ? url : QUrl();
}

void readEnclosure(const QXmlStreamAttributes& attributes, RawItem& item) {
  if (attributes.hasAttribute(sparkle, "version")) {
    item.version = attributes.value(sparkle, "version").toString();
  }
  if (attributes.hasAttribute(sparkle, "shortVersionString")) {
    item.shortVersion = attributes.value(sparkle, "shortVersionString").toString();
  }
}

/// Reads one child of an item, to its end.
void readItemChild(QXmlStreamReader& xml, RawItem& item) {
  if (xml.namespaceUri() == QString(sparkle) && xml.name() == QString("version")) {
    item.version = xml.readElementText(QXmlStreamReader::SkipChildElements);
  } else if (xml.namespaceUri() == QString(sparkle) &&
             xml.name() == QString("shortVersionString")) {
    item.shortVersion = xml.readElementText(QXmlStreamReader::SkipChildElements);
  } else if (xml.namespaceUri().isEmpty() && xml.name() == QString("link")) {
    item.page = httpsUrl(xml.readElementText(QXmlStreamReader::SkipChildElements));
  } else {
    if (xml.namespaceUri().isEmpty() && xml.name() == QString("enclosure")) {
      readEnclosure(xml.attributes(), item);
    }
    xml.skipCurrentElement();
  }
}

AppcastItem readItem(QXmlStreamReader& xml) {
  RawItem item;
  while (xml.readNextStartElement()) {
    readItemChild(xml, item);
  }
  return {parseVersion(item.shortVersion.isEmpty() ? item.version : item.shortVersion), item.page};
}

void readChannel(QXmlStreamReader& xml, Appcast& appcast) {
  QUrl page;
  while (xml.readNextStartElement()) {
    if (xml.name() == QString("item")) {
      AppcastItem item = readItem(xml);
      if (isNewer(item.version, appcast.newest.version)) {
        appcast.newest = std::move(item);
      }
    } else if (xml.namespaceUri().isEmpty() && xml.name() == QString("link")) {
      page = httpsUrl(xml.readElementText(QXmlStreamReader::SkipChildElements));
    } else {
      xml.skipCurrentElement();
    }
  }
  if (appcast.newest.page.isEmpty()) {
    appcast.newest.page = page;
  }
}

/// Stands before the root element; false where the feed is none.
bool enterFeed(QXmlStreamReader& xml) {
  while (!xml.atEnd() && xml.readNext() != QXmlStreamReader::StartElement) {
    if (xml.isDTD()) {
      xml.raiseError("The feed has a document type.");
    }
  }
  if (!xml.hasError() && xml.name() != QString("rss")) {
    xml.raiseError("The answer is not a feed of updates.");
  }
  return !xml.hasError();
}

}  // namespace

Appcast parseAppcast(const QByteArray& feed) {
  QXmlStreamReader xml(feed);
  Appcast appcast;
  if (enterFeed(xml)) {
    while (xml.readNextStartElement()) {
      if (xml.name() == QString("channel")) {
        readChannel(xml, appcast);
      } else {
        xml.skipCurrentElement();
      }
    }
  }
  if (xml.hasError()) {
    return {{}, xml.errorString()};
  }
  return appcast;
}

QVersionNumber parseVersion(const QString& text) {
  const QString trimmed = text.trimmed();
  qsizetype suffix = 0;
  QVersionNumber version = QVersionNumber::fromString(trimmed, &suffix);
  return suffix == trimmed.size() ? version : QVersionNumber();
}

bool isNewer(const QVersionNumber& candidate, const QVersionNumber& version) {
  return version.normalized() < candidate.normalized();
}

}  // namespace zephlin
