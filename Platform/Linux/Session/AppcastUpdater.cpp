#include "Platform/Linux/Session/AppcastUpdater.h"

#include <QDesktopServices>
#include <QPushButton>
#include <utility>

#include "Platform/Linux/Session/LoadedFeedDownload.h"

namespace zephlin {

AppcastUpdater::AppcastUpdater(QUrl feed, QVersionNumber installed, QString module)
    : feed_(std::move(feed)), installed_(std::move(installed)), module_(std::move(module)) {}

AppcastUpdater::~AppcastUpdater() = default;

void AppcastUpdater::checkForUpdates() {
  if (feed_.isEmpty()) {
    show("Zephlin does not look for updates",
         "This build has no update address. To update, install a newer package over this one.");
    return;
  }
  if (!download_) {
    show("Checking for updates…", "");
    setButtons(QMessageBox::Cancel);
    download_ =
        startFeedDownload(module_, feed_, [this](const FeedResult& result) { tell(result); });
  }
  comeToFront();
}

void AppcastUpdater::comeToFront() {
  box_->show();
  box_->raise();
  box_->activateWindow();
}

void AppcastUpdater::show(const QString& text, const QString& information) {
  if (!box_) {
    box_ = std::make_unique<QMessageBox>();
    box_->setWindowTitle("Zephlin");
    box_->setWindowModality(Qt::NonModal);
    box_->setIconPixmap(QIcon::fromTheme("com.quorvenel.zephlin").pixmap(64));
    QObject::connect(box_.get(), &QMessageBox::finished, box_.get(), [this] { boxWasClosed(); });
  }
  offeredPage_.clear();
  setButtons(QMessageBox::Ok);
  // Escaped, since a server's words may be among them.
  box_->setText("<b>" + text.toHtmlEscaped() + "</b>");
  box_->setInformativeText("<p>" + information.toHtmlEscaped() + "</p>");
  comeToFront();
}

void AppcastUpdater::setButtons(QMessageBox::StandardButtons buttons) {
  box_->setStandardButtons(buttons);
  for (QAbstractButton* const button : box_->buttons()) {
    button->setIcon(QIcon());
  }
}

void AppcastUpdater::tell(const FeedResult& result) {
  download_.reset();
  const Appcast appcast =
      result.error.isEmpty() ? parseAppcast(result.content) : Appcast{{}, result.error};
  if (!appcast.error.isEmpty()) {
    show("Zephlin could not check for updates", appcast.error);
  } else if (isNewer(appcast.newest.version, installed_)) {
    tellNewest(appcast.newest);
  } else {
    show("Zephlin is up to date", "Version " + installed_.toString() + " is the newest one.");
  }
}

void AppcastUpdater::tellNewest(const AppcastItem& newest) {
  show("Zephlin " + newest.version.toString() + " is available",
       "You have version " + installed_.toString() + ".");
  if (newest.page.isEmpty()) {
    return;
  }
  offeredPage_ = newest.page;
  setButtons(QMessageBox::Open | QMessageBox::Cancel);
  box_->button(QMessageBox::Open)->setText("Open Download Page");
  box_->button(QMessageBox::Cancel)->setText("Later");
  box_->setDefaultButton(QMessageBox::Open);
}

void AppcastUpdater::boxWasClosed() {
  download_.reset();
  if (box_->standardButton(box_->clickedButton()) == QMessageBox::Open) {
    QDesktopServices::openUrl(offeredPage_);
  }
}

}  // namespace zephlin
