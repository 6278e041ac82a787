#pragma once

#include <QObject>
#include <functional>
#include <memory>

#include "Platform/Menu.h"

namespace zephlin {

/// Makes a main menu's key equivalents work in every window of the application, including alerts,
/// though the menu is never shown. Command is the control key here. Must not outlive the
/// QApplication. Main thread.
///
/// An editing action goes to the widget with the focus, or to the nearest of its parents that has a
/// slot of that name, as Qt's text widgets have. Keys that are not used go the usual way.
class KeyEquivalents final : public QObject {
 public:
  /// `terminate` ends the application.
  KeyEquivalents(std::shared_ptr<Menu> mainMenu, std::function<void()> terminate);

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  bool perform(const MenuItem& item) const;
  [[nodiscard]] bool perform(ResponderAction action) const;

  std::shared_ptr<Menu> mainMenu_;
  std::function<void()> terminate_;
};

}  // namespace zephlin
