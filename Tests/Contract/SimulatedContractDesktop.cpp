#include <algorithm>
#include <cctype>

#include "Platform/Simulated/SimulatedDesktop.h"
#include "Platform/Simulated/SimulatedWindows.h"
#include "Tests/Contract/ContractDesktop.h"
#include "Tests/Contract/ShownWindow.h"

namespace zephlin::contract {
namespace {

struct Size {
  double width = 0;
  double height = 0;
};

struct Frame {
  double left = 0;
  double top = 0;
  double width = 0;
  double height = 0;
};

Size fittingSize(const View& view);

Size labelSize(const Label& label) {
  const double width = static_cast<double>(label.text().size()) * label.style.font.pointSize / 2;
  return {std::min(width, label.style.preferredMaxLayoutWidth.value_or(width)),
          label.style.font.pointSize};
}

Size stackSize(const StackView& stack) {
  const bool isColumn = stack.layout.orientation == StackView::Orientation::Vertical;
  double along = 0;
  double across = 0;
  for (const auto& [view, spacingAfter] : stack.arrangedSubviews()) {
    const Size size = fittingSize(*view);
    along += isColumn ? size.height : size.width;
    across = std::max(across, isColumn ? size.width : size.height);
    along += view == stack.arrangedSubviews().back().view ? 0 : spacingAfter;
  }
  const EdgeInsets& insets = stack.layout.edgeInsets;
  return {(isColumn ? across : along) + insets.left + insets.right,
          (isColumn ? along : across) + insets.top + insets.bottom};
}

Size pinnedSize(const Box& view) {
  Size size;
  for (const auto& [child, insets] : view.subviews()) {
    const Size inner = fittingSize(*child);
    size = {std::max(size.width, inner.width + insets.left + insets.right),
            std::max(size.height, inner.height + insets.top + insets.bottom)};
  }
  return size;
}

Size fittingSize(const View& view) {
  Size size;
  if (const auto* const label = dynamic_cast<const Label*>(&view)) {
    size = labelSize(*label);
  } else if (const auto* const stack = dynamic_cast<const StackView*>(&view)) {
    size = stackSize(*stack);
  } else if (dynamic_cast<const Button*>(&view) != nullptr) {
    size = {60, 20};
  } else if (const auto* const box = dynamic_cast<const Box*>(&view)) {
    size = pinnedSize(*box);
  }
  size.width = view.fixedWidth.value_or(size.width);
  return size;
}

class Layout {
 public:
  void add(const View& view, const Frame& frame, int depth);

  std::vector<ShownView> views;

 private:
  void addColumn(const StackView& stack, const Frame& frame, int depth);
  void addRow(const StackView& stack, const Frame& frame, int depth);
};

void Layout::add(const View& view, const Frame& frame, int depth) {
  ShownView shown;
  shown.depth = depth;
  shown.left = frame.left;
  shown.top = frame.top;
  shown.width = frame.width;
  shown.height = frame.height;
  const auto* const box = dynamic_cast<const Box*>(&view);
  shown.layer = box != nullptr ? box->layer : std::nullopt;
  const auto* const stack = dynamic_cast<const StackView*>(&view);
  const bool isColumn =
      stack != nullptr && stack->layout.orientation == StackView::Orientation::Vertical;
  if (const auto* const label = dynamic_cast<const Label*>(&view)) {
    shown.kind = ShownView::Kind::Label;
    shown.text = label->text();
    shown.wraps = label->style.kind == Label::Kind::Wrapping;
    shown.font = label->style.font;
    shown.textColor = label->textColor();
    shown.alignment = label->style.alignment;
  } else if (const auto* const button = dynamic_cast<const Button*>(&view)) {
    shown.kind = ShownView::Kind::Button;
    shown.text = button->title;
  } else if (stack != nullptr) {
    shown.kind = isColumn ? ShownView::Kind::Column : ShownView::Kind::Row;
  }
  views.push_back(shown);
  if (box != nullptr) {
    for (const auto& [child, insets] : box->subviews()) {
      add(*child,
          {frame.left + insets.left, frame.top + insets.top,
           frame.width - insets.left - insets.right, frame.height - insets.top - insets.bottom},
          depth + 1);
    }
  }
  if (stack != nullptr) {
    isColumn ? addColumn(*stack, frame, depth + 1) : addRow(*stack, frame, depth + 1);
  }
}

void Layout::addColumn(const StackView& stack, const Frame& frame, int depth) {
  double top = frame.top + stack.layout.edgeInsets.top;
  for (const auto& [view, spacingAfter] : stack.arrangedSubviews()) {
    const Size size = fittingSize(*view);
    add(*view, {frame.left + (frame.width - size.width) / 2, top, size.width, size.height}, depth);
    top += size.height + spacingAfter;
  }
}

void Layout::addRow(const StackView& stack, const Frame& frame, int depth) {
  const auto count = static_cast<double>(stack.arrangedSubviews().size());
  const double share = (frame.width - stack.layout.spacing * (count - 1)) / count;
  double left = frame.left + stack.layout.edgeInsets.left;
  for (const auto& [view, spacingAfter] : stack.arrangedSubviews()) {
    const bool isEqual = stack.layout.distribution == StackView::Distribution::FillEqually;
    const Size size = fittingSize(*view);
    const double width = isEqual ? share : size.width;
    add(*view, {left, frame.top, width, frame.height}, depth);
    left += width + spacingAfter;
  }
}

/// The window's views, laid out as a desktop does it whose letters are as high as their font and
/// half as wide.
ShownWindow laidOut(SimulatedWindow& window) {
  window.displayIfNeeded();
  const Size size = fittingSize(*window.contentView);
  Layout layout;
  layout.add(*window.contentView, {0, 0, size.width, size.height}, 0);
  return {.isFloating = true,
          .isResizable = false,
          .isCentered = window.centerings > 0,
          .views = std::move(layout.views)};
}

std::string keyEquivalentOf(const MenuItem& item) {
  if (item.keyEquivalent.empty()) {
    return "";
  }
  const auto held = [&item](ModifierFlags modifier) {
    return (item.keyEquivalentModifierMask & modifier) != 0;
  };
  return std::string(held(modifierCommand) ? "Command-" : "") +
         (held(modifierShift) ? "Shift-" : "") +
         static_cast<char>(std::toupper(static_cast<unsigned char>(item.keyEquivalent.front())));
}

class SimulatedContractDesktop final : public ContractDesktop {
 public:
  Platform& platform() override { return *desktop_; }
  void restartPlatform() override {
    desktop_.reset();
    desktop_ = std::make_unique<SimulatedDesktop>(storage_);
  }

  bool runUntil(const std::function<bool()>& condition) override {
    const double end = desktop_->now() + virtualTimeout;
    while (!condition()) {
      if (desktop_->now() > end || !desktop_->step()) {
        return condition();
      }
    }
    return true;
  }
  void runFor(double seconds) override { desktop_->runFor(seconds); }
  double monotonicSeconds() override { return desktop_->now(); }
  void letTimePass(double seconds) override {
    desktop_->loop().blockFor(ticksFromSeconds(seconds));
  }

  void plugKeyboard() override { desktop_->plugKeyboard(); }
  void sleepAndWake() override { desktop_->sleepAndWake(3600); }
  void pressCapsLock() override { desktop_->pressCapsLock(); }
  void releaseCapsLock() override { desktop_->releaseCapsLock(); }

  bool openMenu() override { return desktop_->openMenu(); }
  std::vector<ShownMenuItem> menuItems() override;
  bool chooseMenuItem(const std::string& title) override { return desktop_->click(title); }
  void closeMenu() override { desktop_->closeMenu(); }
  std::string statusToolTip() override { return desktop_->systemStatusBar().item().toolTip; }
  bool isStatusImageShown() override {
    return desktop_->systemStatusBar().item().image.has_value();
  }

  std::vector<ShownAlert> alerts() override;
  void dismissAlert() override { desktop_->dismissAlert(); }
  bool isWindowShown() override;
  std::vector<std::string> windowTexts() override { return window()->labelTexts(); }
  bool pressButton(const std::string& title) override { return window()->pressButton(title); }
  void closeWindow() override { window()->close(); }
  ShownWindow shownWindow(const std::string& title) override;
  void setDark(bool /*isDark*/) override {}

  void storeTextInDefaults(const std::string& key, const std::string& text) override {
    storage_->set(key, text);
  }
  void spoilDefaults() override { storage_->values.clear(); }
  void switchLoginItemOff() override {
    desktop_->loginService().setNeedsApproval(true);
    desktop_->loginService().setStatus(LoginServiceStatus::RequiresApproval);
  }
  void makeLoginItemsFail() override { desktop_->loginService().failWith("not permitted"); }

 private:
  static constexpr double virtualTimeout = 86'400;

  std::shared_ptr<SimulatedWindow> window() { return desktop_->windows().window(); }

  std::shared_ptr<SimulatedUserDefaultsStorage> storage_ =
      std::make_shared<SimulatedUserDefaultsStorage>();
  std::unique_ptr<SimulatedDesktop> desktop_ = std::make_unique<SimulatedDesktop>(storage_);
};

std::vector<ShownMenuItem> SimulatedContractDesktop::menuItems() {
  std::vector<ShownMenuItem> shown;
  for (const auto& item : desktop_->systemStatusBar().menuItems()) {
    shown.push_back({item->title, item->isSeparator, item->isEnabled,
                     static_cast<bool>(item->isChecked), keyEquivalentOf(*item)});
  }
  return shown;
}

ShownWindow SimulatedContractDesktop::shownWindow(const std::string& title) {
  for (const auto& window : desktop_->windows().windows()) {
    if (window->isShown && window->description.title == title) {
      return laidOut(*window);
    }
  }
  return {};
}

std::vector<ShownAlert> SimulatedContractDesktop::alerts() {
  if (!desktop_->alerts().isModal()) {
    return {};
  }
  const Alert& alert = desktop_->alerts().shown().back();
  return {{alert.messageText, alert.buttons}};
}

bool SimulatedContractDesktop::isWindowShown() {
  const auto windows = desktop_->windows().windows();
  return std::any_of(windows.begin(), windows.end(),
                     [](const auto& window) { return window->isShown; });
}

}  // namespace

std::unique_ptr<ContractDesktop> makeContractDesktop() {
  return std::make_unique<SimulatedContractDesktop>();
}

}  // namespace zephlin::contract
