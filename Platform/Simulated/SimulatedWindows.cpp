#include "Platform/Simulated/SimulatedWindows.h"

#include <stdexcept>
#include <utility>

namespace zephlin {

namespace {

/// The window as the program holds it.
class WindowHandle final : public Window {
 public:
  WindowHandle(std::shared_ptr<SimulatedWindow> window, std::shared_ptr<const bool> drawable)
      : window_(std::move(window)), drawable_(std::move(drawable)) {}
  WindowHandle(const WindowHandle&) = delete;
  WindowHandle& operator=(const WindowHandle&) = delete;
  ~WindowHandle() override { window_->isShown = false; }

  void setDelegate(std::weak_ptr<WindowDelegate> delegate) override {
    window_->delegate = std::move(delegate);
  }
  void setContentSizeToFit() override { ++window_->fittings; }
  void center() override { ++window_->centerings; }
  void makeKeyAndOrderFront() override {
    ++window_->orderFronts;
    window_->isShown = true;
  }
  void displayIfNeeded() override { window_->needsDisplay = true; }
  std::optional<std::string> contentAsPng() override;

 private:
  std::shared_ptr<SimulatedWindow> window_;
  std::shared_ptr<const bool> drawable_;
};

class ChildrenOf final : public ViewVisitor {
 public:
  void visit(Box& box) override {
    for (const Box::Subview& subview : box.subviews()) {
      children.push_back(subview.view);
    }
  }
  void visit(Label& /*label*/) override {}
  void visit(Button& /*button*/) override {}
  void visit(StackView& stack) override {
    for (const StackView::Arranged& arranged : stack.arrangedSubviews()) {
      children.push_back(arranged.view);
    }
  }

  std::vector<std::shared_ptr<View>> children;
};

/// The signature of a PNG file, and then the texts, so that a test sees when it was taken.
std::optional<std::string> WindowHandle::contentAsPng() {
  if (!*drawable_) {
    return std::nullopt;
  }
  window_->display();
  std::string png = "\x89PNG\r\n\x1a\n";
  for (const std::string& text : window_->labelTexts()) {
    png += text + "\n";
  }
  return png;
}

}  // namespace

void forEachView(View& view, const std::function<void(View&)>& visit) {
  visit(view);
  ChildrenOf children;
  view.accept(children);
  for (const auto& child : children.children) {
    forEachView(*child, visit);
  }
}

SimulatedWindow::SimulatedWindow(WindowDescription windowDescription, std::shared_ptr<View> content)
    : description(std::move(windowDescription)), contentView(std::move(content)) {}

void SimulatedWindow::close() {
  if (!isShown) {
    return;
  }
  if (const auto told = delegate.lock()) {
    told->windowWillClose();
  }
  isShown = false;
}

std::vector<std::string> SimulatedWindow::labelTexts() const {
  std::vector<std::string> texts;
  forEachView(*contentView, [&texts](View& view) {
    if (const auto* label = dynamic_cast<const Label*>(&view)) {
      texts.push_back(label->text());
    }
  });
  return texts;
}

bool SimulatedWindow::pressButton(const std::string& title) {
  const Button* found = nullptr;
  forEachView(*contentView, [&](View& view) {
    const auto* button = dynamic_cast<const Button*>(&view);
    if (button != nullptr && button->title == title && found == nullptr) {
      found = button;
    }
  });
  if (found == nullptr || !isShown) {
    return false;
  }
  const std::function<void()> action = found->action;
  action();
  return true;
}

void SimulatedWindow::displayIfNeeded() {
  if (isShown && needsDisplay) {
    display();
  }
}

void SimulatedWindow::display() {
  needsDisplay = false;
  forEachView(*contentView, [](View& view) {
    auto* const box = dynamic_cast<Box*>(&view);
    if (std::exchange(view.needsDisplay, false) && box != nullptr && box->layer) {
      box->updateLayer();
    }
  });
}

std::unique_ptr<Window> SimulatedWindows::makeWindow(const WindowDescription& description,
                                                     std::shared_ptr<View> contentView) {
  auto window = std::make_shared<SimulatedWindow>(description, std::move(contentView));
  std::erase_if(windows_, [](const auto& weak) { return weak.expired(); });
  windows_.push_back(window);
  ++made_;
  return std::make_unique<WindowHandle>(std::move(window), drawable_);
}

std::vector<std::shared_ptr<SimulatedWindow>> SimulatedWindows::windows() const {
  std::vector<std::shared_ptr<SimulatedWindow>> live;
  for (const auto& weak : windows_) {
    if (auto window = weak.lock()) {
      live.push_back(std::move(window));
    }
  }
  return live;
}

std::shared_ptr<SimulatedWindow> SimulatedWindows::window() const {
  const auto live = windows();
  if (live.empty()) {
    throw std::logic_error("there is no window");
  }
  return live.back();
}

void SimulatedWindows::displayIfNeeded() {
  for (const auto& weak : windows_) {
    if (const auto window = weak.lock()) {
      window->displayIfNeeded();
    }
  }
}

namespace {

/// Counts an alert among the modal ones for as long as it lives.
class ModalSession {
 public:
  explicit ModalSession(SimulatedTracking& tracking) : tracking_(tracking) {
    ++tracking_.modalAlerts;
  }
  ModalSession(const ModalSession&) = delete;
  ModalSession& operator=(const ModalSession&) = delete;
  ~ModalSession() { --tracking_.modalAlerts; }

 private:
  SimulatedTracking& tracking_;
};

}  // namespace

void SimulatedAlerts::runModal(const Alert& alert) {
  constexpr VirtualTicks longest = 86'400 * virtualTicksPerSecond;
  const ModalSession session(tracking_);
  shown_.push_back(alert);
  if (onShown) {
    onShown();
  }
  const VirtualTicks end = loop_.now() + longest;
  while (dismissed_ == 0) {
    if (loop_.now() > end || !loop_.step()) {
      throw std::logic_error("nobody dismisses the alert");
    }
  }
  --dismissed_;
}

void SimulatedAlerts::dismissAlert() {
  if (dismissed_ < tracking_.modalAlerts) {
    ++dismissed_;
  }
}

void SimulatedAlerts::dismissAlertAfter(double seconds) {
  loop_.schedule(loop_.now() + ticksFromSeconds(seconds), VirtualLoop::Lane::Main,
                 [this] { dismissAlert(); });
}

}  // namespace zephlin
