#pragma once

#include <QAction>
#include <QMenu>
#include <cstddef>

#include "Platform/Linux/StatusItem/StatusMenu.h"

namespace zephlin {

/// Shows a StatusMenu in a QMenu. An entry that stays in its place keeps its QAction, so that an
/// open menu changes while the user looks at it. Main thread.
class QtMenuTranslation {
 public:
  /// The StatusMenu outlives the translation, and is updated whenever the QMenu is about to be
  /// shown.
  explicit QtMenuTranslation(StatusMenu& menu);
  QtMenuTranslation(const QtMenuTranslation&) = delete;
  QtMenuTranslation& operator=(const QtMenuTranslation&) = delete;
  ~QtMenuTranslation() = default;

  /// Lives as long as the translation.
  [[nodiscard]] QMenu& qtMenu() { return qtMenu_; }

  /// Shows the entries that the StatusMenu has now.
  void show();

 private:
  QAction& actionAt(std::size_t index, const MenuItem& item);
  void choose(const QAction* action);

  StatusMenu& menu_;
  QMenu qtMenu_;
};

}  // namespace zephlin
