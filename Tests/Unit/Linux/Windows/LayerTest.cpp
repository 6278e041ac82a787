#include "Platform/Linux/Windows/ColorPalette.h"
#include "Tests/Unit/Linux/Windows/TreeFixture.h"
#include "Zephlin/RoundedView.h"

namespace zephlin {
namespace {

class CountingBox final : public Box {
 public:
  CountingBox() : Box(60) {
    layer = Layer();
    auto text = std::make_shared<Label>(" ");
    addSubview(text, {.top = 20, .left = 8, .bottom = 20, .right = 8});
  }
  void updateLayer() override {
    ++updates;
    layer->backgroundColor = fill;
  }
  Color fill{ColorRole::SystemGreen};
  int updates = 0;
};

std::shared_ptr<RoundedView> roundedBox(std::optional<Color> border, double radius) {
  auto box = std::make_shared<RoundedView>(Color{ColorRole::SystemRed}, border, radius, 60);
  box->embed(std::make_shared<Label>(" "), {20, 8, 20, 8});
  return box;
}

class LayerTest : public TreeFixture {
 protected:
  std::shared_ptr<CountingBox> realiseBox() {
    auto box = std::make_shared<CountingBox>();
    realise(box);
    return box;
  }
  QColor shown(ColorRole role) { return resolve({role}, appearanceOf(widget().palette())); }
};

TEST_F(LayerTest, IsUpdatedBeforeItIsFirstShown) {
  const auto box = realiseBox();
  EXPECT_EQ(box->updates, 0);
  EXPECT_EQ(colorAt(30, 5), shown(ColorRole::SystemGreen));
  EXPECT_EQ(box->updates, 1);
  EXPECT_FALSE(box->needsDisplay);
}

TEST_F(LayerTest, ReplacingTheFillAloneDoesNotRedraw) {
  const auto box = realiseBox();
  colorAt(30, 5);
  box->fill = {ColorRole::SystemRed};
  EXPECT_EQ(colorAt(30, 5), shown(ColorRole::SystemGreen));
  EXPECT_EQ(box->updates, 1);
}

TEST_F(LayerTest, ReplacingTheFillAndAskingForDisplayRedraws) {
  const auto box = realiseBox();
  showAndActivate();
  ASSERT_TRUE(QTest::qWaitFor([&] { return box->updates == 1; }, timeoutInMilliseconds));
  box->fill = {ColorRole::SystemRed};
  box->needsDisplay = true;
  window_->displayIfNeeded();
  EXPECT_EQ(box->updates, 1) << "not from within displayIfNeeded";
  EXPECT_TRUE(QTest::qWaitFor([&] { return box->updates == 2; }, timeoutInMilliseconds));
  EXPECT_EQ(colorAt(30, 5), shown(ColorRole::SystemRed));
  EXPECT_EQ(box->updates, 2);
}

TEST_F(LayerTest, FillAndBorderAreDarkOnADarkWindow) {
  realise(roundedBox(Color{ColorRole::SystemGreen}, 12));
  EXPECT_EQ(colorAt(30, 5), resolve({ColorRole::SystemRed}, Appearance::Light));
  QPalette dark;
  dark.setColor(QPalette::Window, QColor(0x2d, 0x2d, 0x2d));
  widget().setPalette(dark);
  EXPECT_EQ(colorAt(30, 5), resolve({ColorRole::SystemRed}, Appearance::Dark));
  EXPECT_EQ(colorAt(30, 0), resolve({ColorRole::SystemGreen}, Appearance::Dark));
}

TEST_F(LayerTest, CornersAreRoundAndLetTheWindowThrough) {
  realise(roundedBox(std::nullopt, 12));
  EXPECT_EQ(colorAt(0, 0), widget().palette().color(QPalette::Window));
  EXPECT_EQ(colorAt(2, 2), widget().palette().color(QPalette::Window));
  EXPECT_EQ(colorAt(5, 5), shown(ColorRole::SystemRed));
  EXPECT_EQ(colorAt(0, 25), shown(ColorRole::SystemRed));
}

TEST_F(LayerTest, ABorderIsOneSharpPixelInsideTheBox) {
  realise(roundedBox(Color{ColorRole::SystemGreen}, 12));
  EXPECT_EQ(colorAt(30, 0), shown(ColorRole::SystemGreen));
  EXPECT_EQ(colorAt(30, 1), shown(ColorRole::SystemRed));
  EXPECT_EQ(colorAt(0, 25), shown(ColorRole::SystemGreen));
  EXPECT_EQ(colorAt(1, 25), shown(ColorRole::SystemRed));
  EXPECT_EQ(colorAt(59, 25), shown(ColorRole::SystemGreen));
  EXPECT_EQ(colorAt(58, 25), shown(ColorRole::SystemRed));
}

/// At that scale the box begins and ends between two of the screen's pixels.
TEST_F(LayerTest, EdgesAreSharpAtFractionalScales) {
  auto around = std::make_shared<Box>();
  around->addSubview(roundedBox(Color{ColorRole::SystemGreen}, 0), {7, 7, 7, 7});
  realise(around);
  showAndActivate();
  constexpr qreal scale = 1.5;
  QImage image(widget().size() * scale, QImage::Format_RGB32);
  image.setDevicePixelRatio(scale);
  widget().render(&image);
  std::vector<QRgb> column;
  for (int y = 9; y < 16; ++y) {
    column.push_back(image.pixel(50, y));
  }
  const QRgb window = widget().palette().color(QPalette::Window).rgb();
  const QRgb border = shown(ColorRole::SystemGreen).rgb();
  const QRgb fill = shown(ColorRole::SystemRed).rgb();
  EXPECT_EQ(column, (std::vector<QRgb>{window, window, border, border, fill, fill, fill}));
}

}  // namespace
}  // namespace zephlin
