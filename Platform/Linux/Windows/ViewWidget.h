#pragma once

#include <QWidget>
#include <memory>

#include "Platform/Linux/Windows/DisplayHook.h"
#include "Platform/Views.h"

namespace zephlin {

/// Shows a view's layer, if it has one, behind its children. Main thread.
class ViewWidget final : public QWidget {
 public:
  ViewWidget(std::shared_ptr<View> view, QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  const std::shared_ptr<View> view_;
  DisplayHook hook_;
};

}  // namespace zephlin
