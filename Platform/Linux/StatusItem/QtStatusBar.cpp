#include "Platform/Linux/StatusItem/QtStatusBar.h"

#include <QGuiApplication>
#include <QObject>
#include <QTimer>
#include <memory>
#include <utility>

#include "Platform/Linux/StatusItem/StatusNotifierItem.h"
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
  QtStatusItem(std::function<bool()> isTerminating, std::function<void()> trayIsMissing);
  [[nodiscard]] bool hasButton() const override { return true; }
  void setButtonImage(const std::optional<SymbolImage>& image) override;
  void setButtonToolTip(const std::string& text) override;
  void setMenu(std::shared_ptr<Menu> menu) override;
  void menuTitlesDidChange() override { menu_.itemsDidChange(); }

 private:
  void hostsChanged();
  void xembedTrayChanged();
  void awaitHost();
  void appearIn(std::unique_ptr<TrayEntry> entry);
  void showImage();

  std::optional<SymbolImage> image_;
  std::string toolTip_;
  StatusMenu menu_;
  StatusNotifierWatcher watcher_;
  XEmbedTray xembedTray_;
  // Absent while there is no tray.
  std::unique_ptr<TrayEntry> entry_;
  QTimer hostTimeout_;
  QTimer nextPass_;
  // Destroyed first: no callback runs after it.
  QObject context_;
};

QtStatusItem::QtStatusItem(std::function<bool()> isTerminating, std::function<void()> trayIsMissing)
    : menu_(std::move(isTerminating),
            [this] {
              if (entry_) {
                entry_->showMenu();
              }
            }),
      watcher_([this] { hostsChanged(); }),
      xembedTray_([this] { xembedTrayChanged(); }) {
  hostTimeout_.setSingleShot(true);
  hostTimeout_.setInterval(watcher_.isPossible() ? hostTimeout : std::chrono::seconds(0));
  QObject::connect(&hostTimeout_, &QTimer::timeout, &context_, [this] {
    if (xembedTray_.isThere()) {
      appearIn(std::make_unique<XEmbedItem>(xembedTray_, menu_));
    }
  });
  nextPass_.setSingleShot(true);
  QObject::connect(&nextPass_, &QTimer::timeout, &context_, [this] { menu_.update(); });
  QTimer::singleShot(QtStatusBar::patience, &context_, [this, missing = std::move(trayIsMissing)] {
    if (!watcher_.hasHost() && !xembedTray_.isThere()) {
      missing();
    }
  });
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
  entry_.reset();
  if (watcher_.hasHost()) {
    hostTimeout_.stop();
    appearIn(std::make_unique<StatusNotifierItem>(watcher_, menu_));
  } else {
    awaitHost();
  }
}

void QtStatusItem::xembedTrayChanged() {
  if (entry_) {
    showImage();
  } else {
    awaitHost();
  }
}

void QtStatusItem::awaitHost() {
  if (xembedTray_.isThere()) {
    hostTimeout_.start();
  }
}

void QtStatusItem::appearIn(std::unique_ptr<TrayEntry> entry) {
  entry_ = std::move(entry);
  showImage();
  entry_->setToolTip(QString::fromStdString(toolTip_));
  menu_.update();
  entry_->appear();
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

QtStatusBar::QtStatusBar(std::function<bool()> isTerminating, std::function<void()> trayIsMissing)
    : isTerminating_(std::move(isTerminating)), trayIsMissing_(std::move(trayIsMissing)) {}

std::unique_ptr<StatusItem> QtStatusBar::makeStatusItem() {
  if (QGuiApplication::platformName() == QLatin1String("offscreen")) {
    return std::make_unique<HiddenStatusItem>();
  }
  return std::make_unique<QtStatusItem>(isTerminating_, trayIsMissing_);
}

std::optional<SymbolImage> QtStatusBar::systemSymbol(const std::string& name,
                                                     const std::string& accessibilityDescription) {
  if (!iconNameOf(name)) {
    return std::nullopt;
  }
  return SymbolImage{name, accessibilityDescription, false};
}

}  // namespace zephlin
