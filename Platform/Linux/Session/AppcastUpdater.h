#pragma once

#include <QMessageBox>
#include <QObject>
#include <QString>
#include <QUrl>
#include <QVersionNumber>
#include <memory>

#include "Platform/Linux/Session/Appcast.h"
#include "Platform/Linux/Updates/FeedResult.h"
#include "Platform/Updater.h"

namespace zephlin {

/// Looks into a feed for a newer version and tells the result in a window of its own. It offers
/// the page of the newer version and downloads nothing itself: what is installed belongs to the
/// system's package manager. Nothing is asked of the network before the user asks.
class AppcastUpdater final : public Updater {
 public:
  /// `feed` is an https address; an empty one stands for a build without. `module` is the path of
  /// the module that downloads it, which is loaded when the user asks.
  AppcastUpdater(QUrl feed, QVersionNumber installed, QString module);
  AppcastUpdater(const AppcastUpdater&) = delete;
  AppcastUpdater& operator=(const AppcastUpdater&) = delete;
  ~AppcastUpdater() override;

  void checkForUpdates() override;

 private:
  void show(const QString& text, const QString& information);
  void comeToFront();
  void setButtons(QMessageBox::StandardButtons buttons);
  void tell(const FeedResult& result);
  void tellNewest(const AppcastItem& newest);
  void boxWasClosed();

  QUrl feed_;
  QVersionNumber installed_;
  QString module_;
  std::unique_ptr<QMessageBox> box_;
  std::unique_ptr<QObject> download_;
  QUrl offeredPage_;
};

}  // namespace zephlin
