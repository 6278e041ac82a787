#pragma once

#include <QList>
#include <QMessageBox>
#include <QPointer>
#include <QWidget>
#include <memory>

#include "Platform/Window.h"

namespace zephlin {

/// Windows made of Qt's widgets (ViewRealiser.h). Needs a QApplication while it is used. Main
/// thread.
///
/// A window floats above ordinary ones if the window manager allows it: on Wayland the compositor
/// decides that, and the window's position (https://doc.qt.io/qt-6/qt.html#WindowType-enum). A
/// window must not be destroyed from within its delegate's windowWillClose.
class QtWindowServer final : public WindowServer {
 public:
  std::unique_ptr<Window> makeWindow(const WindowDescription& description,
                                     std::shared_ptr<View> contentView) override;
};

/// The windows that the user sees and can open again. Leaves out menus and the icon in an XEmbed
/// tray, which Qt shows in a window of its own. Main thread.
QList<QWidget*> shownWindows();

/// Alerts as Qt's message boxes, above all other windows. Needs a QApplication while it is used.
/// Main thread.
class QtAlertPresenter final : public AlertPresenter {
 public:
  /// Also returns when the user closes or hides the alert, and when the application quits. If an
  /// alert is already shown, brings that one to the front and returns at once.
  void runModal(const Alert& alert) override;

 private:
  QPointer<QMessageBox> shown_;
  bool isAskedForAgain_ = false;
};

}  // namespace zephlin
