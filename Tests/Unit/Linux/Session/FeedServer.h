#pragma once

#include <QByteArray>
#include <QSslConfiguration>
#include <QSslServer>
#include <QUrl>
#include <functional>
#include <map>

#include "Tests/Support/TemporaryDirectory.h"

namespace zephlin::test {

/// A web server on this machine with a certificate of its own making, which this process trusts
/// while it lives. Answers are whole HTTP messages by path; a path that has none is never answered.
class FeedServer {
 public:
  FeedServer();
  FeedServer(const FeedServer&) = delete;
  FeedServer& operator=(const FeedServer&) = delete;
  ~FeedServer();

  [[nodiscard]] QUrl url(const QString& path) const;
  /// From now on, as to any server whose certificate nobody has signed.
  void becomeUntrusted();

  std::map<QByteArray, QByteArray> answers;
  int requests = 0;
  int connections = 0;

 private:
  void serve();

  TemporaryDirectory directory_;
  QSslConfiguration previous_;
  QSslServer server_;
};

/// An answer with the content.
QByteArray httpAnswer(const QByteArray& content);

/// Runs Qt's event loop until the condition holds; false after a minute.
bool runUntil(const std::function<bool()>& condition);

}  // namespace zephlin::test
