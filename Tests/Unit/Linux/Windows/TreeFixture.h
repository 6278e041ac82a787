#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QWidget>
#include <memory>
#include <string>
#include <utility>

#include "Platform/Linux/Windows/QtWindowServer.h"

namespace zephlin {

constexpr const char* testTitle = "A window";
/// Only a failing test waits as long.
constexpr int timeoutInMilliseconds = 10000;

/// The one window with that title, or null.
inline QWidget* findWindow(const QString& title) {
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    if (widget->windowTitle() == title) {
      return widget;
    }
  }
  return nullptr;
}

/// Where the widget is in its window.
inline QRect placeOf(const QWidget& widget) {
  return {widget.mapTo(widget.window(), QPoint()), widget.size()};
}

inline QImage imageOf(const std::optional<std::string>& png) {
  return QImage::fromData(QByteArray::fromStdString(png.value()), "PNG");
}

class CountingDelegate : public WindowDelegate {
 public:
  void windowWillClose() override { ++closings; }
  int closings = 0;
};

/// Realises trees that a test builds by hand.
class TreeFixture : public testing::Test {
 protected:
  Window& realise(std::shared_ptr<View> content) {
    window_ = server_.makeWindow({.title = testTitle, .contentWidth = 300, .contentHeight = 100},
                                 std::move(content));
    window_->setContentSizeToFit();
    return *window_;
  }
  void showAndActivate() {
    window_->makeKeyAndOrderFront();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&widget()));
  }
  QWidget& widget() { return *findWindow(testTitle); }
  QLabel& label(int index = 0) { return *widget().findChildren<QLabel*>().at(index); }
  QPushButton& button() { return *widget().findChild<QPushButton*>(); }
  /// The colour that is shown at that point of the content.
  QColor colorAt(int x, int y) { return imageOf(window_->contentAsPng()).pixelColor(x, y); }

  QtWindowServer server_;
  std::unique_ptr<Window> window_;
};

}  // namespace zephlin
