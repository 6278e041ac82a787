#include "Platform/Linux/StatusItem/QtStatusItem.h"

#include <QCursor>
#include <QPixmap>
#include <utility>

#include "Platform/Linux/StatusItem/SymbolIcons.h"

namespace zephlin {

namespace {

/// Keeps an item without an image in its place: panels put a sign of their own where there is no
/// icon at all.
QIcon blankIcon() {
  QPixmap nothing(22, 22);
  nothing.fill(Qt::transparent);
  return QIcon(nothing);
}

}  // namespace

QtStatusItem::QtStatusItem(std::function<bool()> isTerminating)
    : isTerminating_(std::move(isTerminating)),
      xembed_([this] { xembedTrayChanged(); }),
      finder_(xembed_, [this](TrayKind kind) { appearIn(kind); }) {
  nextPass_.setSingleShot(true);
  QObject::connect(&nextPass_, &QTimer::timeout, &context_, [this] { showMenu(); });
}

QtStatusItem::~QtStatusItem() = default;

void QtStatusItem::setButtonImage(const std::optional<SymbolImage>& image) {
  if (image != image_) {
    image_ = image;
    showIcon();
  }
}

void QtStatusItem::setButtonToolTip(const std::string& text) {
  if (text != toolTip_) {
    toolTip_ = text;
    if (tray_) {
      tray_->setToolTip(QString::fromStdString(text));
    }
  }
}

void QtStatusItem::setMenu(std::shared_ptr<Menu> menu) {
  menu_ = std::make_shared<QtMenuTranslation>(std::move(menu), isTerminating_);
  if (tray_) {
    // The delegate is not called from within a call of its own.
    nextPass_.start();
  }
}

void QtStatusItem::appearIn(TrayKind kind) {
  kind_ = kind;
  tray_ = std::make_unique<QSystemTrayIcon>();
  QObject::connect(tray_.get(), &QSystemTrayIcon::activated, &context_, [this](auto reason) {
    if (reason == QSystemTrayIcon::Trigger) {
      openMenu();
    }
  });
  showIcon();
  tray_->setToolTip(QString::fromStdString(toolTip_));
  showMenu();
  // Last: a panel reads everything as soon as the item is there.
  tray_->show();
  xembedTrayChanged();
}

void QtStatusItem::xembedTrayChanged() {
  if (!tray_) {
    finder_.xembedTrayCame();
  } else if (kind_ == TrayKind::XEmbed) {
    xembed_.watchColours();
    // Read when they are watched, so that no change is missed in between.
    showIcon();
  }
}

QIcon QtStatusItem::icon() const {
  const auto name = image_ ? iconNameOf(image_->name) : std::nullopt;
  if (!name) {
    return blankIcon();
  }
  if (kind_ == TrayKind::XEmbed) {
    return drawnIcon(*name, xembed_.foreground().value_or(contrastingColour()));
  }
  return isInstalledIcon(*name) ? namedIcon(*name) : drawnIcon(*name, contrastingColour());
}

void QtStatusItem::showIcon() {
  if (tray_) {
    tray_->setIcon(icon());
  }
}

void QtStatusItem::showMenu() {
  if (menu_) {
    menu_->update();
    tray_->setContextMenu(&menu_->qtMenu());
    shownMenu_ = menu_;
  }
}

void QtStatusItem::openMenu() {
  if (menu_) {
    menu_->qtMenu().popup(QCursor::pos());
  }
}

}  // namespace zephlin
