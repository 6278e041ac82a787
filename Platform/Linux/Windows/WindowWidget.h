#pragma once

#include <QWidget>
#include <memory>

#include "Platform/Views.h"

namespace zephlin {

/// A floating window of fixed size that can only be closed, by its button or by Esc, and then
/// hides. Its delegate hears of what the user closes, and not of windows that the ending
/// application closes. Main thread.
class WindowWidget final : public QWidget {
 public:
  WindowWidget(const WindowDescription& description, const std::shared_ptr<View>& contentView);

  [[nodiscard]] QWidget& content() const { return *content_; }
  /// From now on the window is as large as its content wants to be, also when that grows.
  void sizeToFitContent();
  void centerOnScreen();
  void comeToFront();

  std::weak_ptr<WindowDelegate> delegate;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void tellDelegateAndHide();

  QWidget* content_;
};

}  // namespace zephlin
