#include "Platform/Linux/StatusItem/QtStatusBar.h"

#include <QCursor>
#include <QGuiApplication>
#include <QIcon>
#include <QObject>
#include <QPixmap>
#include <QSystemTrayIcon>
#include <QTimer>
#include <memory>
#include <utility>

#include "Platform/Linux/StatusItem/QtMenuTranslation.h"
#include "Platform/Linux/StatusItem/SymbolIcons.h"
#include "Platform/Linux/StatusItem/TrayFinder.h"
#include "Platform/Linux/StatusItem/XEmbedTray.h"

namespace zephlin {

namespace {

/// Keeps the place of an item without an image: panels show a sign of their own for an item without
/// an icon.
QIcon blankIcon() {
  QPixmap nothing(22, 22);
  nothing.fill(Qt::transparent);
  return QIcon(nothing);
}

/// A status item in whatever tray the desktop has or will have: it appears when a panel starts, and
/// again when the panel restarts.
class QtStatusItem final : public StatusItem {
 public:
  explicit QtStatusItem(std::function<bool()> isTerminating);
  [[nodiscard]] bool hasButton() const override { return true; }
  void setButtonImage(const std::optional<SymbolImage>& image) override;
  void setButtonToolTip(const std::string& text) override;
  void setMenu(std::shared_ptr<Menu> menu) override;
  void menuTitlesDidChange() override;

 private:
  void appearIn(TrayKind kind);
  void xembedTrayChanged();
  [[nodiscard]] QIcon icon() const;
  void showIcon();
  void showMenu();
  void openMenu();

  std::function<bool()> isTerminating_;
  std::optional<SymbolImage> image_;
  std::string toolTip_;
  std::shared_ptr<QtMenuTranslation> menu_;
  // The one that the panel has, which may still be the previous one.
  std::shared_ptr<QtMenuTranslation> shownMenu_;
  TrayKind kind_ = TrayKind::StatusNotifier;
  // Made when there is a tray to show it in.
  std::unique_ptr<QSystemTrayIcon> tray_;
  XEmbedTray xembed_;
  TrayFinder finder_;
  QTimer nextPass_;
  // Destroyed first: no callback runs after it.
  QObject context_;
};

QtStatusItem::QtStatusItem(std::function<bool()> isTerminating)
    : isTerminating_(std::move(isTerminating)),
      xembed_([this] { xembedTrayChanged(); }),
      finder_(xembed_, [this](TrayKind kind) { appearIn(kind); }) {
  nextPass_.setSingleShot(true);
  QObject::connect(&nextPass_, &QTimer::timeout, &context_, [this] { showMenu(); });
}

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

void QtStatusItem::menuTitlesDidChange() {
  if (menu_) {
    menu_->showTitles();
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

/// The item of an application without a display.
class HiddenStatusItem final : public StatusItem {
 public:
  [[nodiscard]] bool hasButton() const override { return false; }
  void setButtonImage(const std::optional<SymbolImage>& /*image*/) override {}
  void setButtonToolTip(const std::string& /*text*/) override {}
  void setMenu(std::shared_ptr<Menu> /*menu*/) override {}
  void menuTitlesDidChange() override {}
};

}  // namespace

QtStatusBar::QtStatusBar(std::function<bool()> isTerminating)
    : isTerminating_(std::move(isTerminating)) {}

std::unique_ptr<StatusItem> QtStatusBar::makeStatusItem() {
  if (QGuiApplication::platformName() == QLatin1String("offscreen")) {
    return std::make_unique<HiddenStatusItem>();
  }
  return std::make_unique<QtStatusItem>(isTerminating_);
}

std::optional<SymbolImage> QtStatusBar::systemSymbol(const std::string& name,
                                                     const std::string& accessibilityDescription) {
  if (!iconNameOf(name)) {
    return std::nullopt;
  }
  return SymbolImage{name, accessibilityDescription, false};
}

}  // namespace zephlin
