#include "Platform/Linux/Windows/QtWindowServer.h"

#include <QBuffer>
#include <QPixmap>
#include <utility>

#include "Platform/Linux/Windows/WindowWidget.h"

namespace zephlin {

namespace {

class QtWindow final : public Window {
 public:
  QtWindow(const WindowDescription& description, const std::shared_ptr<View>& contentView)
      : widget_(description, contentView) {}

  void setDelegate(std::weak_ptr<WindowDelegate> delegate) override {
    widget_.delegate = std::move(delegate);
  }
  void setContentSizeToFit() override { widget_.sizeToFitContent(); }
  void center() override { widget_.centerOnScreen(); }
  void makeKeyAndOrderFront() override { widget_.comeToFront(); }
  std::optional<std::string> contentAsPng() override;

 private:
  WindowWidget widget_;
};

std::optional<std::string> QtWindow::contentAsPng() {
  QBuffer png;
  png.open(QIODevice::WriteOnly);
  if (!widget_.content().grab().save(&png, "PNG")) {
    return std::nullopt;
  }
  return png.data().toStdString();
}

}  // namespace

std::unique_ptr<Window> QtWindowServer::makeWindow(const WindowDescription& description,
                                                   std::shared_ptr<View> contentView) {
  return std::make_unique<QtWindow>(description, contentView);
}

}  // namespace zephlin
