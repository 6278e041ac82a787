// The window half of TapTestController: what it looks like, from top to bottom.

#include "Zephlin/TapTestController.h"

namespace zephlin {

namespace {

constexpr double contentWidth = 360;
constexpr EdgeInsets contentInsets{.top = 22, .left = 24, .bottom = 16, .right = 24};
constexpr double windowWidth = contentWidth + contentInsets.left + contentInsets.right;
/// Until the content has been laid out.
constexpr double provisionalWindowHeight = 100;
constexpr double defaultSpacing = 12;

constexpr Color separatorColor{ColorRole::Separator};
constexpr double pillRadius = 8;
constexpr EdgeInsets pillInsets{.top = 9, .left = 14, .bottom = 9, .right = 14};
constexpr double cardRadius = 12;
constexpr EdgeInsets cardInsets{.top = 16, .left = 8, .bottom = 14, .right = 8};

constexpr Font titleFont{.pointSize = 17, .weight = FontWeight::Bold};
constexpr Font subtitleFont{.pointSize = 13};
constexpr Font countFont{.pointSize = 40, .weight = FontWeight::Bold, .monospacedDigits = true};
constexpr Font captionFont{.pointSize = 11, .weight = FontWeight::Semibold};
constexpr Font verdictFont{.pointSize = 13, .weight = FontWeight::Semibold};
constexpr Font latencyFont{.pointSize = 11, .monospacedDigits = true};
constexpr Font hintFont{.pointSize = 11};
constexpr Font noteFont{.pointSize = 10};

/// Gives a label its look; wrapping ones break at the width of the content.
void style(Label& label, const Font& font, ColorRole color) {
  label.font = font;
  label.alignment = TextAlignment::Center;
  label.setTextColor({color});
  if (label.kind == Label::Kind::Wrapping) {
    label.preferredMaxLayoutWidth = contentWidth;
  }
}

std::shared_ptr<Label> makeLabel(const char* text, Label::Kind kind, const Font& font,
                                 ColorRole color) {
  auto label = std::make_shared<Label>(text, kind);
  style(*label, font, color);
  return label;
}

}  // namespace

TapTestController::TapTestController(Platform& platform)
    : platform_(platform),
      pressCountLabel_(std::make_shared<Label>("0")),
      toggleCountLabel_(std::make_shared<Label>("0")),
      latencyLabel_(std::make_shared<Label>("")),
      verdictLabel_(std::make_shared<Label>("")),
      verdictPill_(std::make_shared<RoundedView>(separatorColor, std::nullopt, pillRadius)),
      channelNoteLabel_(std::make_shared<Label>("", Label::Kind::Wrapping)) {}

void TapTestController::show() {
  if (!window_) {
    buildWindow();
  }
  clearCounts();
  refreshLabels();
  startMonitoring();
  refreshChannelNote();
  refreshLabels();
  platform_.application().activateIgnoringOtherApps();
  window_->makeKeyAndOrderFront();
}

void TapTestController::windowWillClose() {
  stopMonitoring();
}

void TapTestController::buildWindow() {
  auto window = platform_.windows().makeWindow({.title = "Tap Test",
                                                .contentWidth = windowWidth,
                                                .contentHeight = provisionalWindowHeight,
                                                .level = WindowLevel::Floating},
                                               makeContent());
  window->setContentSizeToFit();
  window->center();
  window->setDelegate(weak_from_this());
  window_ = std::move(window);
}

std::shared_ptr<View> TapTestController::makeContent() {
  auto stack = std::make_shared<StackView>(StackView::Orientation::Vertical);
  stack->spacing = defaultSpacing;
  stack->edgeInsets = contentInsets;
  const auto add = [&stack](std::shared_ptr<View> view, double spacingAfter = defaultSpacing) {
    stack->setCustomSpacing(spacingAfter, *view);
    stack->addArrangedSubview(std::move(view));
  };

  add(makeLabel("Is your Caps Lock instant?", Label::Kind::SingleLine, titleFont, ColorRole::Label),
      4);
  add(makeLabel("Tap Caps Lock a few times. Quick, light taps.", Label::Kind::Wrapping,
                subtitleFont, ColorRole::SecondaryLabel),
      18);
  add(makeStatsRow(), 16);

  style(*verdictLabel_, verdictFont, ColorRole::SecondaryLabel);
  verdictPill_->embed(verdictLabel_, pillInsets);
  verdictPill_->fixedWidth = contentWidth;
  add(verdictPill_, 4);

  style(*latencyLabel_, latencyFont, ColorRole::TertiaryLabel);
  add(latencyLabel_, 18);
  add(makeLabel(
          "Want to see the difference? Turn off Instant Caps Lock in the menu and tap quickly "
          "again and watch taps go missing.",
          Label::Kind::Wrapping, hintFont, ColorRole::TertiaryLabel),
      14);
  // The button is held by the window, which the controller owns.
  add(std::make_shared<Button>("Reset", [this] { resetPressed(); }));
  style(*channelNoteLabel_, noteFont, ColorRole::TertiaryLabel);
  add(channelNoteLabel_);

  auto container = std::make_shared<View>();
  container->addSubview(stack, {});
  container->fixedWidth = windowWidth;
  return container;
}

std::shared_ptr<View> TapTestController::makeStatsRow() {
  auto row = std::make_shared<StackView>(StackView::Orientation::Horizontal);
  row->distribution = StackView::Distribution::FillEqually;
  row->spacing = 12;
  row->fixedWidth = contentWidth;
  row->addArrangedSubview(statCard(pressCountLabel_, "Taps"));
  row->addArrangedSubview(statCard(toggleCountLabel_, "Registered"));
  return row;
}

std::shared_ptr<View> TapTestController::statCard(const std::shared_ptr<Label>& value,
                                                  const char* caption) {
  style(*value, countFont, ColorRole::Label);
  auto stack = std::make_shared<StackView>(StackView::Orientation::Vertical);
  stack->spacing = 2;
  stack->addArrangedSubview(value);
  stack->addArrangedSubview(
      makeLabel(caption, Label::Kind::SingleLine, captionFont, ColorRole::SecondaryLabel));
  auto card = std::make_shared<RoundedView>(Color{ColorRole::ControlBackground}, separatorColor,
                                            cardRadius);
  card->embed(stack, cardInsets);
  return card;
}

}  // namespace zephlin
