#include "Platform/Linux/StatusItem/QtStatusBar.h"

#include <QGuiApplication>
#include <QObject>
#include <QTimer>
#include <memory>
#include <utility>

#include "Platform/Linux/StatusItem/StatusNotifierItem.h"
#include "Platform/Linux/StatusItem/StatusNotifierWatcher.h"
#include "Platform/Linux/StatusItem/SymbolIcons.h"
#include "Platform/Linux/StatusItem/XEmbedItem.h"

namespace zephlin {

namespace {

/// How long a panel that has brought up its XEmbed tray may take for its StatusNotifier host. Much
/// more than it takes even while a session starts, and short enough for the user not to notice.
constexpr std::chrono::seconds hostTimeout{3};

/// A status item in whatever tray the desktop has or will have: it appears when a panel starts, and
/// again when the panel restarts. Panels such as Xfce's offer both kinds, in no fixed order, and
/// StatusNotifier is the better one. A StatusNotifier host is therefore used whenever there is one,
/// and an XEmbed tray only if none has come for a while.
class QtStatusItem final : public StatusItem {
 public:
  QtStatusItem(std::function<bool()> isTerminating, std::function<void(bool)> presenceChanged);
  [[nodiscard]] bool hasButton() const override { return true; }
  void setButtonImage(const std::optional<SymbolImage>& image) override;
  void setButtonToolTip(const std::string& text) override;
  void setMenu(std::shared_ptr<Menu> menu) override;
  void menuTitlesDidChange() override { menu_.itemsDidChange(); }

 private:
  enum class TrayKind { None, StatusNotifier, XEmbed };

  void hostsChanged();
  void xembedTrayChanged();
  void awaitHost();
  void makeEntry(TrayKind kind);
  void appear();
  void showImage();

  std::optional<SymbolImage> image_;
  std::string toolTip_;
  StatusMenu menu_;
  std::function<void(bool)> presenceChanged_;
  bool isMissed_ = false;
  StatusNotifierWatcher watcher_;
  XEmbedTray xembedTray_;
  // Absent until there is a tray, and kept when it goes.
  std::unique_ptr<TrayEntry> entry_;
  TrayKind kind_ = TrayKind::None;
  QTimer hostTimeout_;
  QTimer presenceTimeout_;
  QTimer nextPass_;
  // Destroyed first: no callback runs after it.
  QObject context_;
};

QtStatusItem::QtStatusItem(std::function<bool()> isTerminating,
                           std::function<void(bool)> presenceChanged)
    : menu_(std::move(isTerminating),
            [this] {
              if (entry_) {
                entry_->showMenu();
              }
            }),
      presenceChanged_(std::move(presenceChanged)),
      watcher_([this] { hostsChanged(); }),
      xembedTray_([this] { xembedTrayChanged(); }) {
  hostTimeout_.setSingleShot(true);
  hostTimeout_.setInterval(watcher_.isPossible() ? hostTimeout : std::chrono::seconds(0));
  QObject::connect(&hostTimeout_, &QTimer::timeout, &context_, [this] {
    if (xembedTray_.isThere()) {
      makeEntry(TrayKind::XEmbed);
      appear();
    }
  });
  nextPass_.setSingleShot(true);
  QObject::connect(&nextPass_, &QTimer::timeout, &context_, [this] { menu_.update(); });
  presenceTimeout_.setSingleShot(true);
  presenceTimeout_.setInterval(QtStatusBar::patience);
  QObject::connect(&presenceTimeout_, &QTimer::timeout, &context_, [this] {
    if (!watcher_.hasHost() && !xembedTray_.isThere()) {
      isMissed_ = true;
      presenceChanged_(false);
    }
  });
  presenceTimeout_.start();
  awaitHost();
}

void QtStatusItem::setButtonImage(const std::optional<SymbolImage>& image) {
  if (image != image_) {
    image_ = image;
    showImage();
  }
}

void QtStatusItem::setButtonToolTip(const std::string& text) {
  if (text != toolTip_) {
    toolTip_ = text;
    if (entry_) {
      entry_->setToolTip(QString::fromStdString(text));
    }
  }
}

void QtStatusItem::setMenu(std::shared_ptr<Menu> menu) {
  menu_.setMenu(std::move(menu));
  if (entry_) {
    // The delegate is not called from within a call of its own.
    nextPass_.start();
  }
}

void QtStatusItem::hostsChanged() {
  if (watcher_.hasHost()) {
    hostTimeout_.stop();
    if (kind_ != TrayKind::StatusNotifier) {
      makeEntry(TrayKind::StatusNotifier);
    }
    appear();
  } else {
    presenceTimeout_.start();
    awaitHost();
  }
}

void QtStatusItem::xembedTrayChanged() {
  if (kind_ == TrayKind::XEmbed) {
    showImage();
  } else if (!watcher_.hasHost()) {
    awaitHost();
  }
}

void QtStatusItem::awaitHost() {
  if (xembedTray_.isThere()) {
    hostTimeout_.start();
  }
}

void QtStatusItem::makeEntry(TrayKind kind) {
  kind_ = kind;
  // Never in two trays.
  entry_.reset();
  if (kind == TrayKind::XEmbed) {
    entry_ = std::make_unique<XEmbedItem>(xembedTray_, menu_);
  } else {
    entry_ = std::make_unique<StatusNotifierItem>(menu_);
  }
}

void QtStatusItem::appear() {
  showImage();
  entry_->setToolTip(QString::fromStdString(toolTip_));
  menu_.update();
  entry_->appear();
  presenceTimeout_.stop();
  if (std::exchange(isMissed_, false)) {
    presenceChanged_(true);
  }
}

void QtStatusItem::showImage() {
  if (entry_) {
    entry_->setIconName(image_ ? iconNameOf(image_->name) : std::nullopt);
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

QtStatusBar::QtStatusBar(std::function<bool()> isTerminating,
                         std::function<void(bool)> presenceChanged)
    : isTerminating_(std::move(isTerminating)), presenceChanged_(std::move(presenceChanged)) {}

std::unique_ptr<StatusItem> QtStatusBar::makeStatusItem() {
  if (QGuiApplication::platformName() == QLatin1String("offscreen")) {
    return std::make_unique<HiddenStatusItem>();
  }
  return std::make_unique<QtStatusItem>(isTerminating_, presenceChanged_);
}

std::optional<SymbolImage> QtStatusBar::systemSymbol(const std::string& name,
                                                     const std::string& accessibilityDescription) {
  if (!iconNameOf(name)) {
    return std::nullopt;
  }
  return SymbolImage{name, accessibilityDescription, false};
}

}  // namespace zephlin
