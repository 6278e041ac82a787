// TapTestController, the window: what it looks like, from top to bottom.

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

/// Wrapping labels break at the width of the content.
std::shared_ptr<Label> makeLabel(const char* text, Label::Kind kind, const Font& font,
                                 ColorRole color) {
  const Label::Style style{.kind = kind,
                           .font = font,
                           .alignment = TextAlignment::Center,
                           .preferredMaxLayoutWidth = kind == Label::Kind::Wrapping
                                                          ? std::optional(contentWidth)
                                                          : std::nullopt};
  return std::make_shared<Label>(text, style, Color{color});
}

std::shared_ptr<Label> makeLine(const char* text, const Font& font, ColorRole color) {
  return makeLabel(text, Label::Kind::SingleLine, font, color);
}

std::shared_ptr<Label> makeParagraph(const char* text, const Font& font, ColorRole color) {
  return makeLabel(text, Label::Kind::Wrapping, font, color);
}

/// Who cannot see the window hears the verdict.
std::shared_ptr<Label> makeVerdict() {
  const Label::Style style{
      .font = verdictFont, .alignment = TextAlignment::Center, .isAnnounced = true};
  return std::make_shared<Label>("", style, Color{ColorRole::SecondaryLabel});
}

}  // namespace

TapTestController::TapTestController(Platform& platform)
    : platform_(platform),
      pressCountLabel_(makeLine("0", countFont, ColorRole::Label)),
      toggleCountLabel_(makeLine("0", countFont, ColorRole::Label)),
      latencyLabel_(makeLine("", latencyFont, ColorRole::TertiaryLabel)),
      verdictLabel_(makeVerdict()),
      verdictPill_(
          std::make_shared<RoundedView>(separatorColor, std::nullopt, pillRadius, contentWidth)),
      channelNoteLabel_(makeParagraph("", noteFont, ColorRole::TertiaryLabel)) {
  verdictPill_->embed(verdictLabel_, pillInsets);
}

void TapTestController::show() {
  if (!window_) {
    buildWindow();
  }
  clearCounts();
  refreshLabels();
  startMonitoring();
  refreshHelp();
  refreshChannelNote();
  refreshLabels();
  platform_.application().activateIgnoringOtherApps();
  window_->makeKeyAndOrderFront();
}

void TapTestController::windowWillClose() {
  stopMonitoring();
}

void TapTestController::refreshHelp() {
  auto help = hidManager_ ? std::nullopt : platform_.hidDevices().capsLockKeyHelp();
  const bool isShown = help_.has_value();
  help_ = std::move(help);
  // A window's views are fixed once it has been built.
  if (help_.has_value() != isShown) {
    buildWindow();
  }
}

void TapTestController::buildWindow() {
  auto window = platform_.windows().makeWindow(
      {.title = "Tap Test", .contentWidth = windowWidth, .contentHeight = provisionalWindowHeight},
      makeContent());
  window->setContentSizeToFit();
  window->center();
  window->setDelegate(weak_from_this());
  window_ = std::move(window);
}

std::shared_ptr<View> TapTestController::makeContent() {
  auto stack = std::make_shared<StackView>(StackView::Layout{
      .orientation = StackView::Orientation::Vertical,
      .spacing = defaultSpacing,
      .edgeInsets = contentInsets,
  });
  stack->addArrangedSubview(makeLine("Is your Caps Lock instant?", titleFont, ColorRole::Label), 4);
  stack->addArrangedSubview(makeParagraph("Tap Caps Lock a few times. Quick, light taps.",
                                          subtitleFont, ColorRole::SecondaryLabel),
                            18);
  stack->addArrangedSubview(makeStatsRow(), 16);
  stack->addArrangedSubview(verdictPill_, 4);
  stack->addArrangedSubview(latencyLabel_, 18);
  stack->addArrangedSubview(
      makeParagraph("Want to see the difference? Turn off Instant Caps Lock in the menu and tap "
                    "quickly again and watch taps go missing.",
                    hintFont, ColorRole::TertiaryLabel),
      14);
  // The button is held by the window, which the controller owns.
  stack->addArrangedSubview(std::make_shared<Button>("Reset", [this] { resetPressed(); }));
  stack->addArrangedSubview(channelNoteLabel_);
  if (help_) {
    stack->addArrangedSubview(
        makeParagraph(help_->advice.c_str(), hintFont, ColorRole::SecondaryLabel));
    stack->addArrangedSubview(std::make_shared<Button>("Help", help_->open));
  }

  auto container = std::make_shared<Box>(windowWidth);
  container->addSubview(stack, {});
  return container;
}

std::shared_ptr<View> TapTestController::makeStatsRow() {
  auto row = std::make_shared<StackView>(
      StackView::Layout{
          .orientation = StackView::Orientation::Horizontal,
          .distribution = StackView::Distribution::FillEqually,
          .spacing = 12,
      },
      contentWidth);
  row->addArrangedSubview(statCard(pressCountLabel_, "Taps"));
  row->addArrangedSubview(statCard(toggleCountLabel_, "Registered"));
  return row;
}

std::shared_ptr<View> TapTestController::statCard(const std::shared_ptr<Label>& value,
                                                  const char* caption) {
  auto stack = std::make_shared<StackView>(StackView::Layout{
      .orientation = StackView::Orientation::Vertical,
      .spacing = 2,
  });
  stack->addArrangedSubview(value);
  stack->addArrangedSubview(makeLine(caption, captionFont, ColorRole::SecondaryLabel));
  auto card = std::make_shared<RoundedView>(Color{ColorRole::ControlBackground}, separatorColor,
                                            cardRadius);
  card->embed(stack, cardInsets);
  return card;
}

}  // namespace zephlin
