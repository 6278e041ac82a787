#pragma once

#include <QObject>
#include <QSystemTrayIcon>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "Platform/Linux/StatusItem/QtMenuTranslation.h"
#include "Platform/Linux/StatusItem/TrayFinder.h"
#include "Platform/Linux/StatusItem/XEmbedTray.h"
#include "Platform/StatusBar.h"

namespace zephlin {

/// A status item in whatever tray the desktop has or will have: it shows up when a panel starts,
/// and again when the panel is started anew. Main thread, while the QApplication lives.
class QtStatusItem final : public StatusItem {
 public:
  /// `isTerminating` is as QtStatusBar's.
  explicit QtStatusItem(std::function<bool()> isTerminating);
  QtStatusItem(const QtStatusItem&) = delete;
  QtStatusItem& operator=(const QtStatusItem&) = delete;
  ~QtStatusItem() override;

  [[nodiscard]] bool hasButton() const override { return true; }
  void setButtonImage(const std::optional<SymbolImage>& image) override;
  void setButtonToolTip(const std::string& text) override;
  void setMenu(std::shared_ptr<Menu> menu) override;

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
  // The panel's, which may still be the one before.
  std::shared_ptr<QtMenuTranslation> shownMenu_;
  TrayKind kind_ = TrayKind::StatusNotifier;
  // Made when there is a tray to show it in.
  std::unique_ptr<QSystemTrayIcon> tray_;
  XEmbedTray xembed_;
  TrayFinder finder_;
  QTimer nextPass_;
  // Destroyed first: nothing is called back any more.
  QObject context_;
};

}  // namespace zephlin
