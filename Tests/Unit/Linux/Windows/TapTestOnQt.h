#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QWidget>
#include <memory>

#include "Platform/Linux/Windows/QtWindowServer.h"
#include "Platform/Simulated/SimulatedDesktop.h"
#include "Tests/Support/DelegatingPlatform.h"
#include "Tests/Unit/Linux/Windows/TreeFixture.h"
#include "Zephlin/TapTestController.h"

namespace zephlin {

/// A simulated desktop with real windows.
class PlatformWithQtWindows final : public test::DelegatingPlatform<SimulatedDesktop> {
 public:
  WindowServer& windows() override { return windows_; }
  SimulatedDesktop& desktop() { return desktop_; }

 private:
  QtWindowServer windows_;
};

/// The real tap test in a real window.
class TapTestOnQt : public testing::Test {
 protected:
  void show() {
    controller_->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&widget()));
    desktop().pressModifier(modifierShift);
    desktop().pressModifier(0);
  }
  void showWithoutPressChannel() {
    desktop().hidDevices().failOpening(-536870174);
    show();
  }
  void tap(int times, bool registers = true) {
    for (int done = 0; done < times; ++done) {
      desktop().tapCapsLock(registers);
    }
  }
  void settle() {
    QApplication::sendPostedEvents();
    QApplication::processEvents();
  }

  SimulatedDesktop& desktop() { return platform_.desktop(); }
  QWidget& widget() { return *findWindow("Tap Test"); }
  /// A child in the order in which children were added; fails if there is none.
  static QWidget& child(QWidget& parent, int index) {
    return *parent.findChildren<QWidget*>(Qt::FindDirectChildrenOnly).at(index);
  }
  QWidget& stack() { return child(child(widget(), 0), 0); }
  QWidget& row(int index) { return child(stack(), index); }
  QWidget& card(int index) { return child(row(2), index); }
  QWidget& cardStack(int index) { return child(card(index), 0); }
  QWidget& cardLabel(int index, int line) { return child(cardStack(index), line); }
  QLabel& verdict() { return static_cast<QLabel&>(child(row(3), 0)); }
  QLabel& latency() { return static_cast<QLabel&>(row(4)); }
  QLabel& note() { return static_cast<QLabel&>(row(7)); }

  PlatformWithQtWindows platform_;
  std::shared_ptr<TapTestController> controller_ = std::make_shared<TapTestController>(platform_);
};

}  // namespace zephlin
