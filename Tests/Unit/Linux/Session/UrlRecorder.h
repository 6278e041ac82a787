#pragma once

#include <QDesktopServices>
#include <QObject>
#include <QUrl>
#include <vector>

namespace zephlin::test {

/// Takes the place of the browser.
class UrlRecorder final : public QObject {
  Q_OBJECT

 public:
  UrlRecorder() {
    QDesktopServices::setUrlHandler("https", this, "open");
    QDesktopServices::setUrlHandler("http", this, "open");
  }
  ~UrlRecorder() override {
    QDesktopServices::unsetUrlHandler("https");
    QDesktopServices::unsetUrlHandler("http");
  }

  std::vector<QUrl> opened;

 public Q_SLOTS:
  void open(const QUrl& url) { opened.push_back(url); }
};

}  // namespace zephlin::test
