#pragma once

#include <memory>

#include "Platform/Views.h"

namespace zephlin {

/// Windows made of Qt's widgets: each kind of view is realised by one function, whatever the window
/// is for. There is a QApplication while it is used. Main thread.
///
/// A window floats above ordinary ones where the window manager lets it: on Wayland that, and where
/// a window stands, is the compositor's to decide (https://doc.qt.io/qt-6/qt.html#WindowType-enum).
/// A window is not destroyed from within its delegate's windowWillClose.
class QtWindowServer final : public WindowServer {
 public:
  /// Labels and layers are followed from then on, shown or not. Destroying the window lets go of
  /// the views.
  std::unique_ptr<Window> makeWindow(const WindowDescription& description,
                                     std::shared_ptr<View> contentView) override;
};

}  // namespace zephlin
