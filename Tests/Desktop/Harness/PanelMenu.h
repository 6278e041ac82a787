#pragma once

#include <QPainter>
#include <algorithm>
#include <string>
#include <vector>

#include "Tests/Desktop/Harness/App.h"
#include "Tests/Desktop/Harness/Sight.h"

namespace zephlin::test {

constexpr int leftButton = 1;
constexpr int rightButton = 3;

/// The application's menu as a person sees and uses it: a click on the icon opens it, it is found
/// by what changes on the screen, and its entries are rows of text.
class PanelMenu {
 public:
  PanelMenu(Desktop& desktop, App& app) : desktop_(desktop), app_(app) {}

  /// Clicks the icon, again until the menu shows each entry that the item has. Until they have read
  /// the item's, some panels open a menu of their own or an empty one.
  void open(int button = leftButton) {
    app_.item();
    waitUntil("the whole menu", [&] {
      closed_ = pictureAtRest();
      desktop_.fingers().click(desktop_.panel().waitForIcon().center(), button);
      lookAtMenu();
      if (!labels_.empty() && rows_.size() == labels_.size()) {
        return true;
      }
      desktop_.fingers().click(elsewhere());
      return false;
    });
  }

  /// By a click elsewhere.
  void close() {
    desktop_.fingers().click(elsewhere());
    waitUntilClosed();
  }

  /// Keeps the pointer on the icon until something shows besides it, and returns its place.
  QRect waitForToolTip() {
    closed_ = pictureAtRest();
    desktop_.fingers().moveTo(desktop_.panel().waitForIcon().center());
    waitUntil("a tool tip", [this] { return largestChange(closed_, picture()).width() > 60; });
    return largestChange(closed_, picture());
  }

  void waitUntilClosed() const {
    waitUntil("the menu to close", [this] { return findPlace().isNull(); });
  }

  [[nodiscard]] QRect place() const { return place_; }

  /// Opens it and clicks the entry.
  void choose(const std::string& label, int button = leftButton) {
    open(button);
    click(label);
  }

  /// In the open menu.
  void click(const std::string& label) {
    const auto entry = std::find(labels_.begin(), labels_.end(), label);
    if (entry == labels_.end()) {
      throw std::runtime_error("the menu has no entry " + label);
    }
    const QRect row = rows_.at(static_cast<std::size_t>(entry - labels_.begin()));
    desktop_.fingers().click(place_.topLeft() + row.center());
  }

 private:
  void lookAtMenu() {
    constexpr double patience = 5;
    const double deadline = monotonicSeconds() + patience;
    waitUntil("a menu", [&] { return !findPlace().isNull() || monotonicSeconds() > deadline; });
    waitUntil("a still menu", [this] { return desktop_.screen().isStill(); });
    place_ = findPlace();
    rows_ = place_.isNull() ? std::vector<QRect>() : rowsOfText(desktop_.screen().picture(place_));
    labels_ = labels();
  }

  /// Where nothing reacts to the pointer.
  [[nodiscard]] QPoint elsewhere() const { return {2, desktop_.screen().size().height() / 2}; }

  [[nodiscard]] QImage pictureAtRest() {
    desktop_.fingers().moveTo(elsewhere());
    waitUntil("a still screen", [this] { return desktop_.screen().isStill(); });
    return picture();
  }

  /// Of the screen without the panel, where icons look different while the pointer is on them.
  [[nodiscard]] QImage picture() const {
    QImage picture = desktop_.screen().picture();
    QRect panel = desktop_.panel().place();
    panel.setLeft(0);
    panel.setRight(picture.width() - 1);
    QPainter(&picture).fillRect(panel, Qt::black);
    return picture;
  }

  /// Empty while it is closed, also for a tool tip.
  [[nodiscard]] QRect findPlace() const {
    constexpr int smallest = 60;
    const QImage now = picture();
    const QRect change = now == closed_ ? QRect() : largestChange(closed_, now);
    return change.width() < smallest || change.height() < smallest ? QRect() : change;
  }

  /// Of the entries that are rows of text.
  [[nodiscard]] std::vector<std::string> labels() const {
    std::vector<std::string> labels;
    for (const MenuEntry& entry : app_.item().entries()) {
      if (!entry.isSeparator()) {
        labels.push_back(entry.label());
      }
    }
    return labels;
  }

  Desktop& desktop_;
  App& app_;
  QImage closed_;
  QRect place_;
  std::vector<QRect> rows_;
  std::vector<std::string> labels_;
};

}  // namespace zephlin::test
