#include "Tests/Unit/Linux/Windows/TreeFixture.h"

namespace zephlin {
namespace {

std::shared_ptr<View> sizedBox(double width, double height) {
  auto box = std::make_shared<Box>(width);
  auto inner = std::make_shared<Box>();
  box->addSubview(inner, {.top = height});
  return box;
}

class ViewTreeTest : public TreeFixture {
 protected:
  /// The places of the stack's children.
  std::vector<QRect> placesIn(const std::shared_ptr<StackView>& stack) {
    realise(stack);
    showAndActivate();
    std::vector<QRect> places;
    QWidget* const content = widget().findChild<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    for (const QWidget* child : content->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
      places.push_back(placeOf(*child));
    }
    return places;
  }
};

TEST_F(ViewTreeTest, AColumnIsCentredWithItsSpacingsAndInsets) {
  auto stack = std::make_shared<StackView>(
      StackView::Layout{.orientation = StackView::Orientation::Vertical,
                        .spacing = 5,
                        .edgeInsets = {.top = 1, .left = 2, .bottom = 3, .right = 4}});
  stack->addArrangedSubview(sizedBox(40, 10));
  stack->addArrangedSubview(sizedBox(20, 10), 9);
  stack->addArrangedSubview(sizedBox(30, 10));
  EXPECT_EQ(placesIn(stack),
            (std::vector<QRect>{{2, 1, 40, 10}, {12, 16, 20, 10}, {7, 35, 30, 10}}));
  EXPECT_EQ(widget().size(), QSize(46, 48));
}

TEST_F(ViewTreeTest, ARowIsCentredAcross) {
  auto stack = std::make_shared<StackView>(
      StackView::Layout{.orientation = StackView::Orientation::Horizontal, .spacing = 6});
  stack->addArrangedSubview(sizedBox(40, 30));
  stack->addArrangedSubview(sizedBox(20, 10));
  EXPECT_EQ(placesIn(stack), (std::vector<QRect>{{0, 0, 40, 30}, {46, 10, 20, 10}}));
}

TEST_F(ViewTreeTest, ARowIsSharedEquallyWhateverItsViewsHold) {
  auto stack = std::make_shared<StackView>(
      StackView::Layout{.orientation = StackView::Orientation::Horizontal,
                        .distribution = StackView::Distribution::FillEqually,
                        .spacing = 12},
      360);
  for (const char* text : {"1", "A wider text by far"}) {
    auto box = std::make_shared<Box>();
    box->addSubview(std::make_shared<Label>(text), {});
    stack->addArrangedSubview(box);
  }
  const auto places = placesIn(stack);
  EXPECT_EQ(places.at(0).left(), 0);
  EXPECT_EQ(places.at(0).width(), 174);
  EXPECT_EQ(places.at(1).left(), 186);
  EXPECT_EQ(places.at(1).width(), 174);
}

TEST_F(ViewTreeTest, SubviewsHaveInsetsOfTheirOwn) {
  auto view = std::make_shared<Box>();
  view->addSubview(sizedBox(50, 20), {.top = 1, .left = 2, .bottom = 3, .right = 4});
  auto second = std::make_shared<Label>("");
  view->addSubview(second, {.top = 5, .left = 6, .bottom = 7, .right = 8});
  realise(view);
  showAndActivate();
  EXPECT_GE(widget().width(), 56);
  EXPECT_EQ(placeOf(label()), QRect(QPoint(), widget().size()).adjusted(6, 5, -8, -7));
}

TEST_F(ViewTreeTest, AButtonActs) {
  int pushes = 0;
  realise(std::make_shared<Button>("R & D", [&pushes] { ++pushes; }));
  EXPECT_EQ(button().text(), "R && D");
  button().click();
  EXPECT_EQ(pushes, 1);
}

TEST_F(ViewTreeTest, AButtonWithoutAnActionDoesNothing) {
  realise(std::make_shared<Button>("Idle", nullptr));
  button().click();
  EXPECT_EQ(button().text(), "Idle");
}

TEST_F(ViewTreeTest, TheWindowKeepsItsViewsAliveAndNoLonger) {
  auto text = std::make_shared<Label>("Text");
  const std::weak_ptr<Label> kept = text;
  realise(std::move(text));
  EXPECT_FALSE(kept.expired());
  window_.reset();
  EXPECT_TRUE(kept.expired());
}

}  // namespace
}  // namespace zephlin
